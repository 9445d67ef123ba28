#include "tools/zanthe/ClassifyReport.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <iomanip>
#include <numeric>
#include <sstream>
#include <string>
#include <string_view>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/FileContents.h"
#include "tools/zanthe/JsonLine.h"
#include "tools/zanthe/MembersReport.h"
#include "tools/zanthe/TimeText.h"

namespace Program {

namespace {

using Zanthe::ClassifiedBackend;
using Zanthe::ClassifiedContent;
using Zanthe::ClassifiedOrientation;
using Zanthe::ClassifiedPath;
using Zanthe::ClassifiedRoute;
using Zanthe::ClassifiedStream;
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
    return text;
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
    return path.member + " (" + path.kind + ", stream " + std::to_string(path.stream) +
           ", ordinal " + std::to_string(path.ordinal) + ", code " +
           std::to_string(path.memberCode) + ')';
}

// Four characters of any bytes: plain where they are letters, digits and what is usual among them,
// else in quotes and with what cannot be printed as \xHH.
std::string CodecText(const std::string& codec) {
    const auto isPlain = [](unsigned char byte) {
        return std::isalnum(byte) != 0 || byte == ' ' || byte == '.' || byte == '-' || byte == '_';
    };
    if (codec.empty()) {
        return "(no codec)";
    }
    const bool plain = std::all_of(codec.begin(), codec.end(), isPlain) && codec[0] != ' ';
    return plain ? codec : '"' + Printable(codec) + '"';
}

std::string PixelAspectText(const std::array<std::int32_t, 2>& aspect) {
    const auto [width, height] = aspect;
    const std::int64_t divisor =
        std::max<std::int64_t>(std::gcd(std::int64_t{width}, std::int64_t{height}), 1);
    return std::to_string(width / divisor) + ':' + std::to_string(height / divisor);
}

std::string RouteText(const ClassifiedRoute& route) {
    if (!route.isBuilt) {
        return route.backend + " (not in this build)";
    }
    return route.obstacle.empty() ? route.backend : route.backend + ", but " + route.obstacle;
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
    PrintRow("audio route", RouteText(file.audioRoute), out);
    PrintRow("video route", RouteText(file.videoRoute), out);
    if (!file.imageRoute.empty()) {
        PrintRow("image route", file.imageRoute, out);
    }
}

std::string ContentText(const ClassifiedContent& content) {
    std::ostringstream text;
    text << content.kind << ' ' << content.codec;
    if (content.kind == "video") {
        text << ", " << SizeText(content.width, content.height);
        if (content.frameRate > 0) {
            text << ", " << content.frameRate << " pictures a second";
        }
    } else {
        text << ", " << content.sampleRate << " Hz, " << content.channels
             << (content.channels == 1 ? " channel" : " channels");
    }
    return text.str();
}

// What decoders find, whatever the container.
void PrintInside(const FileClassification& file, std::ostream& out) {
    for (const ClassifiedContent& content : file.inside) {
        PrintRow("inside", ContentText(content), out);
    }
    if (file.duration > 0) {
        PrintRow("duration", ClockText(file.duration), out);
    }
}

// The display size has the pixels' shape in it, and is told before the turn. Coded size and shape
// are told of one codec alone.
std::string PictureText(const ClassifiedTrack& track) {
    std::string text = ", display size " + SizeText(track.width, track.height);
    if (track.pixelAspect) {
        text += ", coded " + SizeText(track.codedWidth, track.codedHeight) + ", pixel aspect " +
                PixelAspectText(*track.pixelAspect);
    }
    return text + ", matrix " + MatrixText(track.matrix);
}

void PrintTrack(const ClassifiedTrack& track, std::ostream& out) {
    std::string text = track.kind + ' ' + CodecText(track.codec);
    if (track.codecDoubtful) {
        text += " (no codec: see the remark)";
    }
    if (track.displayName) {
        text += " \"" + *track.displayName + '"';
    }
    if (track.kind == "video") {
        text += PictureText(track);
    } else if (track.kind == "audio") {
        text += ", volume " + std::to_string(track.volume);
    }
    PrintRow("  track " + std::to_string(track.id), text, out);
}

std::string StreamsText(const std::vector<ClassifiedStream>& streams) {
    std::vector<std::string> parts;
    parts.reserve(streams.size());
    for (const ClassifiedStream& stream : streams) {
        parts.push_back(stream.kind + ' ' + CodecText(stream.codec));
    }
    return Joined(parts);
}

std::string OrientationText(const ClassifiedOrientation& orientation) {
    const bool sideways = orientation.rotation == 90 || orientation.rotation == 270;
    const std::string shown = sideways ? SizeText(orientation.height, orientation.width)
                                       : SizeText(orientation.width, orientation.height);
    const std::string turn =
        orientation.rotation == 0
            ? "no turn"
            : "turn by " + std::to_string(orientation.rotation) + " degrees clockwise";
    return MatrixText(orientation.matrix) + ", " +
           (orientation.isPlainTurn ? turn + ", display size " + shown
                                    : "no plain turn (mirrored or skewed): " + turn);
}

bool IsNamedMp4(const FileClassification& file) {
    const std::string& path = file.parsed.container;
    std::string extension = path.substr(std::min(path.rfind('.'), path.size()));
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char each) { return static_cast<char>(std::tolower(each)); });
    return extension == ".mp4" || extension == ".mov";
}

bool HasPictures(const FileClassification& file) {
    return std::any_of(file.tracks.begin(), file.tracks.end(),
                       [](const ClassifiedTrack& track) { return track.kind == "video"; });
}

// What only files of the two names are asked for.
void PrintMp4Answers(const FileClassification& file, std::ostream& out) {
    PrintRow("PNG QuickTime", YesOrNo(file.pngMov), out);
    PrintRow("AAC in MP4", file.aacInMp4 ? "yes (by the code mp4a)" : "no", out);
    if (!file.orientation) {
        PrintRow("orientation",
                 "unknown: " + (file.mp4Problem.empty() ? "a box that it stands in is damaged"
                                                        : file.mp4Problem),
                 out);
    } else if (HasPictures(file)) {
        PrintRow("orientation", OrientationText(*file.orientation), out);
    }
}

// Why it is none matters where one would take it for one.
std::string Mp4Text(const FileClassification& file) {
    if (file.mp4Problem.empty()) {
        return "yes";
    }
    const bool isOne = file.contents == "MP4 or QuickTime" || IsNamedMp4(file);
    return isOne ? "no: " + file.mp4Problem : "no";
}

void PrintMp4(const FileClassification& file, std::ostream& out) {
    PrintRow("MP4", Mp4Text(file), out);
    for (const ClassifiedTrack& track : file.tracks) {
        PrintTrack(track, out);
    }
    if (!file.streams.empty()) {
        PrintRow("streams", StreamsText(file.streams), out);
    }
    if (IsNamedMp4(file)) {
        PrintMp4Answers(file, out);
    }
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

Json TextOrNull(const std::string& text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json JsonOf(const ClassifiedRoute& route) {
    return {{"backend", route.backend},
            {"built", route.isBuilt},
            {"obstacle", TextOrNull(route.obstacle)}};
}

Json JsonOf(const ClassifiedTrack& track) {
    Json json{{"id", track.id},
              {"kind", track.kind},
              {"codec", Printable(track.codec)},
              {"codec_doubtful", track.codecDoubtful},
              {"display_name", nullptr},
              {"width", track.width},
              {"height", track.height},
              {"coded_width", track.codedWidth},
              {"coded_height", track.codedHeight},
              {"pixel_aspect", nullptr},
              {"matrix", track.matrix},
              {"volume", track.volume}};
    if (track.displayName) {
        json["display_name"] = *track.displayName;
    }
    if (track.pixelAspect) {
        json["pixel_aspect"] = *track.pixelAspect;
    }
    return json;
}

Json JsonOf(const ClassifiedStream& stream) {
    return {{"kind", stream.kind}, {"codec", Printable(stream.codec)}};
}

Json JsonOf(const ClassifiedOrientation& orientation) {
    return {{"matrix", orientation.matrix},
            {"width", orientation.width},
            {"height", orientation.height},
            {"rotation", orientation.rotation},
            {"plain_turn", orientation.isPlainTurn}};
}

Json JsonOf(const ClassifiedContent& content) {
    if (content.kind == "audio") {
        return {{"kind", content.kind},
                {"codec", content.codec},
                {"sample_rate", content.sampleRate},
                {"channels", content.channels}};
    }
    Json json{{"kind", content.kind},
              {"codec", content.codec},
              {"width", content.width},
              {"height", content.height},
              {"frame_rate", nullptr}};
    if (content.frameRate > 0) {
        json["frame_rate"] = content.frameRate;
    }
    return json;
}

template <typename Element>
Json ArrayOf(const std::vector<Element>& elements) {
    Json array = Json::array();
    for (const Element& element : elements) {
        array.push_back(JsonOf(element));
    }
    return array;
}

Json Mp4JsonOf(const FileClassification& file) {
    Json json{{"parsed", file.mp4Problem.empty()},
              {"problem", nullptr},
              {"tracks", ArrayOf(file.tracks)},
              {"streams", ArrayOf(file.streams)},
              {"png_quicktime", file.pngMov},
              {"aac", file.aacInMp4},
              {"orientation", nullptr}};
    if (!file.mp4Problem.empty()) {
        json["problem"] = file.mp4Problem;
    }
    if (file.orientation) {
        json["orientation"] = JsonOf(*file.orientation);
    }
    return json;
}

} // namespace

void PrintLines(const FileClassification& file, std::ostream& out) {
    PrintRow("file", file.path, out);
    if (!file.parsed.member.empty()) {
        PrintRow("container", file.parsed.container, out);
        PrintRow("member", MemberText(file.parsed), out);
    }
    const std::string contents = ContentsOf(file);
    PrintRow("contents", contents.empty() ? "unknown" : contents, out);
    const bool isTold = file.subtypeSource != "nothing";
    PrintRow("subtype", file.subtype + (isTold ? " (by " + file.subtypeSource + ')' : ""), out);
    PrintRow("source filter",
             file.sourceFilter + (file.sourceFilter == "none" ? "" : ' ' + file.sourceFilterId),
             out);
    if (!file.preferredFilters.empty()) {
        PrintRow("preferred filters", Joined(file.preferredFilters), out);
    }
    PrintBackends(file, out);
    PrintInside(file, out);
    PrintMp4(file, out);
    PrintMembers(file.parsed.container, out);
    for (const std::string& remark : file.remarks) {
        PrintRow("remark", remark, out);
    }
}

void PrintJson(const FileClassification& file, std::ostream& out) {
    PrintJsonLine({{"command", "classify"},
                   {"file", file.path},
                   {"path", JsonOf(file.parsed)},
                   {"contents", ContentsOf(file)},
                   {"subtype", {{"name", file.subtype}, {"told_by", file.subtypeSource}}},
                   {"source_filter", {{"name", file.sourceFilter}, {"id", file.sourceFilterId}}},
                   {"preferred_filters", file.preferredFilters},
                   {"audio", JsonOf(file.audio)},
                   {"video_samples", JsonOf(file.videoSamples)},
                   {"detection", JsonOf(file.detection)},
                   {"system", file.system62 ? "6.2_or_later" : "below_6.2"},
                   {"audio_route", JsonOf(file.audioRoute)},
                   {"video_route", JsonOf(file.videoRoute)},
                   {"image_route", TextOrNull(file.imageRoute)},
                   {"inside", ArrayOf(file.inside)},
                   {"duration_100ns", file.duration > 0 ? Json(file.duration) : Json(nullptr)},
                   {"mp4", Mp4JsonOf(file)},
                   {"members", MembersJson(file.parsed.container)},
                   {"remarks", file.remarks}},
                  out);
}

} // namespace Program
