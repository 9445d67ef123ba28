#include "zanthe/analysis/ClassificationMp4.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "platform/av/Mp4Boxes.h"
#include "platform/dshow/CodedSubtype.h"
#include "platform/dshow/Uuids.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/FileReader.h"
#include "zanthe/analysis/MP4ParseException.h"
#include "zanthe/analysis/MP4Parser.h"
#include "zanthe/analysis/MP4StreamTypes.h"
#include "zanthe/analysis/MediaOrientation.h"
#include "zanthe/analysis/PngMov.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/detection/CodecDisplayName.h"

namespace Zanthe {

namespace {

const char* TrackKindName(std::int32_t type) {
    switch (type) {
    case MP4TrackType::Video:
        return "video";
    case MP4TrackType::Audio:
        return "audio";
    default:
        return "other";
    }
}

std::string CodecOf(const MP4TrackInfo& track) {
    // Four bytes, zeros among them too: there are codecs of two letters and a number.
    const std::string codec(track.codec.data(), 4);
    return codec == std::string(4, '\0') ? std::string() : codec;
}

std::optional<std::string> DisplayNameOf(std::int32_t type, const std::string& codec) {
    std::wstring name;
    const GUID major = type == MP4TrackType::Video ? MEDIATYPE_Video : MEDIATYPE_Audio;
    if (type == MP4TrackType::Other || codec.empty() ||
        !GetCodecDisplayName(major, CodedSubtype(std::string_view(codec)), name)) {
        return std::nullopt;
    }
    return win32::WideToUtf8(name);
}

ClassifiedTrack Classify(const MP4TrackInfo& track) {
    ClassifiedTrack result;
    result.id = track.trackId;
    result.kind = TrackKindName(track.type);
    result.codec = CodecOf(track);
    result.displayName = DisplayNameOf(track.type, result.codec);
    result.width = track.width;
    result.height = track.height;
    result.codedWidth = track.codedWidth;
    result.codedHeight = track.codedHeight;
    if (result.codec == "avc1") {
        result.pixelAspect = {track.parWidth, track.parHeight};
    }
    result.matrix = track.matrix;
    result.volume = track.volume;
    return result;
}

// In words why FileReader does not take the file.
std::string WhyNotMp4(const std::string& container) {
    const auto boxes = av::Mp4Boxes::Open(win32::ExistingPath(container));
    if (boxes == nullptr) {
        return "the file cannot be opened";
    }
    const auto type = boxes->FourCharacters(4);
    if (!type) {
        return "the file is shorter than a box";
    }
    const bool printable = std::all_of(type->begin(), type->end(),
                                       [](char each) { return each >= ' ' && each <= '~'; });
    return printable ? "its first box is \"" + *type + "\", not an ftyp"
                     : "its first box is not an ftyp";
}

bool StartsAsMp4(const std::wstring& path) {
    try {
        FileReader().Open(path);
        return true;
    } catch (const MP4ParseException&) {
        return false;
    }
}

void ClassifyTracks(FileClassification& result) {
    const std::wstring container = win32::Utf8ToWide(result.parsed.container);
    DSMediaDetNS::MP4Parser parser(std::make_unique<FileReader>());
    try {
        parser.Parse(container);
    } catch (const MP4ParseException&) {
        result.mp4Problem = StartsAsMp4(container) ? "its boxes cannot be walked to the end"
                                                   : WhyNotMp4(result.parsed.container);
    }
    for (const MP4TrackInfo& track : parser.Tracks()) {
        result.tracks.push_back(Classify(track));
    }
}

// Behind a first sample description the finder of tracks reads on where the table ends. The lister
// of streams does not, so where they differ that has happened.
void MarkDoubtfulCodecs(FileClassification& result) {
    const bool comparable = result.tracks.size() == result.streams.size();
    for (std::size_t i = 0; comparable && i < result.tracks.size(); ++i) {
        ClassifiedTrack& track = result.tracks[i];
        track.codecDoubtful = !track.codec.empty() && track.codec != result.streams[i].codec;
    }
}

void ClassifyStreams(const std::wstring& path, FileClassification& result) {
    const std::vector<MP4StreamType> streams =
        ReadMP4StreamTypes(win32::Utf8ToWide(result.parsed.container));
    for (const MP4StreamType& stream : streams) {
        result.streams.push_back({TrackKindName(stream.type), stream.codec});
    }
    // The question about PNG pictures goes to the path as it was asked.
    result.pngMov =
        result.parsed.member.empty() ? IsMovWithPngVideo(path, streams) : IsMovWithPngVideo(path);
}

bool IsPlainTurn(const std::array<double, 4>& matrix, int rotation) {
    const bool upright = matrix[0] > 0.0 && matrix[1] == 0.0 && matrix[2] == 0.0 && matrix[3] > 0.0;
    const bool straight = matrix[1] == 0.0 && matrix[2] == 0.0;
    const bool sideways = matrix[0] == 0.0 && matrix[3] == 0.0;
    return rotation == 0 ? upright : (rotation == 180 ? straight : sideways);
}

void ClassifyOrientation(const std::wstring& path, FileClassification& result) {
    if (const auto found = FindMediaOrientation(path)) {
        const int rotation = RotationFromOrientation(*found);
        result.orientation = {found->matrix, found->width, found->height, rotation,
                              IsPlainTurn(found->matrix, rotation)};
    }
}

} // namespace

void ClassifyMp4(FileClassification& file) {
    const std::wstring path = win32::Utf8ToWide(file.path);
    ClassifyStreams(path, file);
    ClassifyTracks(file);
    MarkDoubtfulCodecs(file);
    ClassifyOrientation(path, file);
    file.aacInMp4 = AudioMediaReaderFactory::IsMP4WithAACAudio(file.path);
}

} // namespace Zanthe
