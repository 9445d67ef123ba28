#include "tools/zanthe/ClassifyReport.h"

#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/JsonLine.h"
#include "tools/zanthe/MembersReport.h"

namespace Program {

namespace {

using Zanthe::ClassifiedBackend;
using Zanthe::ClassifiedPath;
using Zanthe::ClassifiedTrack;
using Zanthe::FileClassification;

constexpr int NameWidth = 18;

std::string_view BackendName(bool mediaFoundation) {
    return mediaFoundation ? "Media Foundation" : "DirectShow";
}

std::string_view YesOrNo(bool answer) {
    return answer ? "yes" : "no";
}

std::string Joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts) {
        text += (text.empty() ? "" : ", ") + part;
    }
    return text.empty() ? "none" : text;
}

std::string SizeText(std::int32_t width, std::int32_t height) {
    return width == 0 && height == 0 ? "none"
                                     : std::to_string(width) + 'x' + std::to_string(height);
}

std::string MatrixText(const std::array<double, 4>& matrix) {
    std::ostringstream text;
    text << '[' << matrix[0] << ' ' << matrix[1] << "; " << matrix[2] << ' ' << matrix[3] << ']';
    return text.str();
}

std::string MemberText(const ClassifiedPath& path) {
    if (path.member.empty()) {
        return "none";
    }
    return path.member + " (" + path.kind + ", stream " + std::to_string(path.stream) +
           ", ordinal " + std::to_string(path.ordinal) + ", code " +
           std::to_string(path.memberCode) + ')';
}

void PrintRow(std::string_view name, std::string_view answer, std::ostream& out) {
    out << std::left << std::setw(NameWidth) << name << OneLine(answer) << '\n';
}

void PrintBackend(std::string_view name, const ClassifiedBackend& backend, std::ostream& out) {
    out << "  " << std::left << std::setw(NameWidth - 2) << name << std::setw(NameWidth)
        << BackendName(backend.mediaFoundation62) << BackendName(backend.mediaFoundationBelow62)
        << '\n';
}

void PrintBackends(const FileClassification& file, std::ostream& out) {
    out << std::left << std::setw(NameWidth) << "backend" << std::setw(NameWidth) << "6.2 or later"
        << "below 6.2" << '\n';
    PrintBackend("audio", file.audio, out);
    PrintBackend("video samples", file.videoSamples, out);
    PrintBackend("detection", file.detection, out);
    PrintRow("this system", file.system62 ? "6.2 or later" : "below 6.2", out);
    PrintRow("audio route", file.audioRoute, out);
    PrintRow("video route", file.videoRoute, out);
}

void PrintTrack(const ClassifiedTrack& track, std::ostream& out) {
    std::ostringstream name;
    name << "  track " << track.id;
    std::ostringstream text;
    text << track.kind << ' ' << (track.codec.empty() ? "(no codec)" : track.codec);
    if (track.displayName) {
        text << " \"" << *track.displayName << '"';
    }
    text << ", shown " << SizeText(track.width, track.height) << ", coded "
         << SizeText(track.codedWidth, track.codedHeight) << ", pixel aspect " << track.parWidth
         << ':' << track.parHeight << ", matrix " << MatrixText(track.matrix) << ", volume "
         << track.volume;
    PrintRow(name.str(), text.str(), out);
}

void PrintMp4(const FileClassification& file, std::ostream& out) {
    PrintRow("MP4", file.mp4Problem.empty() ? "yes" : "no: " + file.mp4Problem, out);
    for (const ClassifiedTrack& track : file.tracks) {
        PrintTrack(track, out);
    }
    PrintRow("streams", Joined(file.streams), out);
    PrintRow("PNG QuickTime", YesOrNo(file.pngMov), out);
    PrintRow("AAC in MP4", YesOrNo(file.aacInMp4), out);
    PrintRow("orientation",
             MatrixText(file.orientation) + ", size " +
                 SizeText(file.orientationWidth, file.orientationHeight) + ", turn by " +
                 std::to_string(file.rotation) + " degrees",
             out);
}

Json JsonOf(const ClassifiedPath& path) {
    return {{"container", path.container}, {"member", path.member},
            {"kind", path.kind},           {"stream", path.stream},
            {"ordinal", path.ordinal},     {"member_code", path.memberCode}};
}

Json JsonOf(const ClassifiedBackend& backend) {
    return {{"6.2_or_later", BackendName(backend.mediaFoundation62)},
            {"below_6.2", BackendName(backend.mediaFoundationBelow62)}};
}

Json JsonOf(const ClassifiedTrack& track) {
    Json json{{"id", track.id},
              {"kind", track.kind},
              {"codec", track.codec},
              {"display_name", nullptr},
              {"width", track.width},
              {"height", track.height},
              {"coded_width", track.codedWidth},
              {"coded_height", track.codedHeight},
              {"pixel_aspect", {track.parWidth, track.parHeight}},
              {"matrix", track.matrix},
              {"volume", track.volume}};
    if (track.displayName) {
        json["display_name"] = *track.displayName;
    }
    return json;
}

Json Mp4JsonOf(const FileClassification& file) {
    Json tracks = Json::array();
    for (const ClassifiedTrack& track : file.tracks) {
        tracks.push_back(JsonOf(track));
    }
    Json json{{"parsed", file.mp4Problem.empty()},
              {"problem", nullptr},
              {"tracks", std::move(tracks)},
              {"streams", file.streams},
              {"png_quicktime", file.pngMov},
              {"aac", file.aacInMp4},
              {"orientation",
               {{"matrix", file.orientation},
                {"width", file.orientationWidth},
                {"height", file.orientationHeight},
                {"rotation", file.rotation}}}};
    if (!file.mp4Problem.empty()) {
        json["problem"] = file.mp4Problem;
    }
    return json;
}

} // namespace

void PrintLines(const FileClassification& file, std::ostream& out) {
    PrintRow("file", file.path, out);
    PrintRow("container", file.parsed.container, out);
    PrintRow("member", MemberText(file.parsed), out);
    PrintRow("subtype", file.subtype + " (by " + file.subtypeSource + ')', out);
    PrintRow("source filter", file.sourceFilter + ' ' + file.sourceFilterId, out);
    PrintRow("preferred filters", Joined(file.preferredFilters), out);
    PrintBackends(file, out);
    PrintMp4(file, out);
    PrintMembers(file.parsed.container, out);
}

void PrintJson(const FileClassification& file, std::ostream& out) {
    PrintJsonLine({{"command", "classify"},
                   {"file", file.path},
                   {"path", JsonOf(file.parsed)},
                   {"subtype", {{"name", file.subtype}, {"told_by", file.subtypeSource}}},
                   {"source_filter", {{"name", file.sourceFilter}, {"id", file.sourceFilterId}}},
                   {"preferred_filters", file.preferredFilters},
                   {"audio", JsonOf(file.audio)},
                   {"video_samples", JsonOf(file.videoSamples)},
                   {"detection", JsonOf(file.detection)},
                   {"system", file.system62 ? "6.2_or_later" : "below_6.2"},
                   {"audio_route", file.audioRoute},
                   {"video_route", file.videoRoute},
                   {"mp4", Mp4JsonOf(file)},
                   {"members", MembersJson(file.parsed.container)}},
                  out);
}

} // namespace Program
