#include "tools/zanthe/VerifyReport.h"

#include <bit>
#include <iomanip>
#include <limits>
#include <sstream>

#include "tools/zanthe/CommandError.h"

namespace Program {

namespace {

std::string BitsText(float sample) {
    std::ostringstream text;
    text << "0x" << std::hex << std::setfill('0') << std::setw(8)
         << std::bit_cast<std::uint32_t>(sample);
    return text.str();
}

std::string SampleText(float sample) {
    std::ostringstream text;
    text << std::setprecision(std::numeric_limits<float>::max_digits10) << sample << " ("
         << BitsText(sample) << ')';
    return text.str();
}

std::string_view WordFor(Difference::What what) {
    switch (what) {
    case Difference::What::Count:
        return "count";
    case Difference::What::Sample:
        return "sample";
    case Difference::What::Touched:
        return "touched";
    case Difference::What::Failure:
        return "failure";
    }
    return {};
}

Json JsonOf(const Difference& difference) {
    Json json{{"what", WordFor(difference.what)},
              {"kind", NameOf(difference.span.kind)},
              {"span", difference.span.index},
              {"start", difference.span.start},
              {"count", difference.span.count}};
    switch (difference.what) {
    case Difference::What::Count:
        json["expected"] = difference.expectedCount;
        json["answered"] = difference.answeredCount;
        break;
    case Difference::What::Sample:
        json["frame"] = difference.frame;
        json["channel"] = difference.channel;
        json["expected"] = difference.expected;
        json["expected_bits"] = BitsText(difference.expected);
        json["answered"] = difference.answered;
        json["answered_bits"] = BitsText(difference.answered);
        break;
    case Difference::What::Touched:
        json["frame"] = difference.frame;
        json["channel"] = difference.channel;
        json["answered"] = difference.answeredCount;
        break;
    case Difference::What::Failure:
        json["text"] = difference.failure;
        break;
    }
    return json;
}

double SecondsOf(const VerifyReport& report) {
    return static_cast<double>(report.audio.frames) / report.rate;
}

} // namespace

std::string Describe(const Difference& difference) {
    std::ostringstream text;
    text << NameOf(difference.span.kind) << " read " << difference.span.index << " of "
         << difference.span.count << " frames at " << difference.span.start << ": ";
    switch (difference.what) {
    case Difference::What::Count:
        text << "answered " << difference.answeredCount << " frames, expected "
             << difference.expectedCount;
        break;
    case Difference::What::Sample:
        text << "frame " << difference.frame << " channel " << difference.channel << " is "
             << SampleText(difference.answered) << ", expected " << SampleText(difference.expected);
        break;
    case Difference::What::Touched:
        text << "wrote " << SampleText(difference.answered) << " at frame " << difference.frame
             << " channel " << difference.channel << ", behind the " << difference.answeredCount
             << " frames it answered";
        break;
    case Difference::What::Failure:
        text << "failed: " << OneLine(difference.failure);
        break;
    }
    return text.str();
}

void PrintLines(const VerifyReport& report, std::ostream& out) {
    std::ostringstream text;
    text << OneLine(report.file) << ": " << report.audio.frames << " frames (" << std::fixed
         << std::setprecision(3) << SecondsOf(report) << " s) at " << report.rate
         << " Hz, stereo; seed " << report.seed << '\n';
    for (const ReadTally& tally : report.audio.tallies) {
        text << "  " << std::left << std::setw(15) << NameOf(tally.kind) << std::right
             << std::setw(8) << tally.spans << " spans " << std::setw(12) << tally.frames
             << " frames  ";
        if (tally.differences == 0) {
            text << "equal\n";
        } else {
            text << tally.differences
                 << (tally.differences == 1 ? " span differs\n" : " spans differ\n");
        }
    }
    if (report.audio.first) {
        text << "first difference: " << Describe(*report.audio.first) << '\n';
    }
    out << text.str();
}

Json JsonOf(const VerifyReport& report) {
    Json compared = Json::array();
    std::int64_t frames = 0;
    for (const ReadTally& tally : report.audio.tallies) {
        compared.push_back({{"kind", NameOf(tally.kind)},
                            {"spans", tally.spans},
                            {"frames", tally.frames},
                            {"differences", tally.differences}});
        frames += tally.kind == ReadKind::Linear ? 0 : tally.frames;
    }
    Json json{{"rate", report.rate},
              {"channels", SoundChannels},
              {"frames", report.audio.frames},
              {"seconds", SecondsOf(report)},
              {"spans", report.audio.Spans()},
              {"frames_compared", frames},
              {"compared", std::move(compared)},
              {"differences", report.audio.Differences()},
              {"first_difference", nullptr}};
    if (report.audio.first) {
        json["first_difference"] = JsonOf(*report.audio.first);
    }
    return json;
}

} // namespace Program
