#include "tools/zanthe/VideoVerifyReport.h"

#include <iomanip>
#include <sstream>
#include <utility>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/VideoEnd.h"
#include "tools/zanthe/VideoJson.h"

namespace Program {

namespace {

using What = VideoDifference::What;

std::string_view WordFor(What what) {
    switch (what) {
    case What::Picture:
        return "picture";
    case What::Time:
        return "time";
    case What::Missing:
        return "missing";
    case What::Extra:
        return "extra";
    case What::Gap:
        return "gap";
    case What::Order:
        return "order";
    case What::Failure:
        return "failure";
    }
    return {};
}

std::string HashText(std::uint64_t hash) {
    std::ostringstream text;
    text << std::hex << std::setfill('0') << std::setw(16) << hash;
    return text.str();
}

std::string UnitsText(const std::optional<std::int64_t>& units) {
    return units ? std::to_string(*units) : "untold";
}

bool NamesPicture(What what) {
    return what != What::Extra && what != What::Failure;
}

Json JsonOf(const VideoDifference& difference) {
    Json json{{"what", WordFor(difference.what)},
              {"kind", NameOf(difference.read.kind)},
              {"read", difference.read.index},
              {"asked", FractionText(difference.read.time)},
              {"asked_seconds", Zanthe::MediaTimeToSeconds(difference.read.time)}};
    if (NamesPicture(difference.what)) {
        json["picture"] = difference.picture;
        json["expected_100ns"] = difference.expectedStart;
    }
    if (difference.what == What::Picture || difference.what == What::Time ||
        difference.what == What::Extra) {
        json["answered_100ns"] = JsonOrNull(difference.answeredStart);
    }
    if (difference.what == What::Picture) {
        json["expected_hash"] = HashText(difference.expectedHash);
        json["answered_hash"] = HashText(difference.answeredHash);
        json["answered_picture"] = JsonOrNull(difference.answeredPicture);
    }
    if (difference.what == What::Failure) {
        json["text"] = difference.failure;
    }
    return json;
}

std::string AnswerText(const VideoDifference& difference) {
    const std::string picture = "picture " + std::to_string(difference.picture);
    switch (difference.what) {
    case What::Picture:
        return "shows another than " + picture + " (" +
               (difference.answeredPicture
                    ? "it looks like picture " + std::to_string(*difference.answeredPicture)
                    : "it looks like none of the linear reading") +
               ")";
    case What::Time:
        return "answered a picture at " + UnitsText(difference.answeredStart) + ", expected " +
               picture + " at " + std::to_string(difference.expectedStart) + " (100 ns)";
    case What::Missing:
        return "answered none, expected " + picture;
    case What::Extra:
        return "answered a picture behind the last one";
    case What::Gap:
        return "no picture covers the times behind " + picture;
    case What::Order:
        return "went back behind " + picture;
    case What::Failure:
        return "failed: " + OneLine(difference.failure);
    }
    return {};
}

std::vector<std::string> RemarksOn(const VideoVerifyReport& report) {
    std::vector<std::string> remarks = report.facts.remarks;
    const std::string ends =
        Disagreement({.told = report.facts.duration, .pictures = report.video.duration});
    if (!ends.empty()) {
        remarks.push_back(ends);
    }
    return remarks;
}

} // namespace

std::string Describe(const VideoDifference& difference) {
    return std::string(NameOf(difference.read.kind)) + " read " +
           std::to_string(difference.read.index) + " at " + FractionText(difference.read.time) +
           " s: " + AnswerText(difference);
}

void PrintLines(const VideoVerifyReport& report, std::ostream& out) {
    std::ostringstream text;
    text << OneLine(report.file) << ": " << report.video.pictures << " pictures (" << std::fixed
         << std::setprecision(3) << SecondsOf(report.video.duration) << " s) of "
         << report.facts.width << " x " << report.facts.height << ", " << report.facts.reader
         << "; seed " << report.seed << '\n';
    for (const VideoTally& tally : report.video.tallies) {
        text << "  " << std::left << std::setw(15) << NameOf(tally.kind) << std::right
             << std::setw(8) << tally.reads << " reads  ";
        if (tally.differences == 0) {
            text << "equal\n";
        } else {
            text << tally.differences << (tally.differences == 1 ? " differs\n" : " differ\n");
        }
    }
    for (const std::string& remark : RemarksOn(report)) {
        text << "  " << OneLine(remark) << '\n';
    }
    if (report.video.first) {
        text << "first difference: " << Describe(*report.video.first) << '\n';
    }
    out << text.str();
}

Json JsonOf(const VideoVerifyReport& report) {
    Json compared = Json::array();
    for (const VideoTally& tally : report.video.tallies) {
        compared.push_back({{"kind", NameOf(tally.kind)},
                            {"reads", tally.reads},
                            {"differences", tally.differences}});
    }
    Json json = JsonOf(report.facts);
    json["remarks"] = RemarksOn(report);
    json["last_picture_end_100ns"] = report.video.duration;
    json["pictures"] = report.video.pictures;
    json["seconds"] = SecondsOf(report.video.duration);
    json["reads"] = report.video.Reads();
    json["compared"] = std::move(compared);
    json["differences"] = report.video.Differences();
    json["first_difference"] = nullptr;
    if (report.video.first) {
        json["first_difference"] = JsonOf(*report.video.first);
    }
    return json;
}

} // namespace Program
