#include "zanthe/analysis/FileClassification.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <string_view>

#include <boost/make_shared.hpp>

#include "platform/av/Contents.h"
#include "platform/av/Mp4Boxes.h"
#include "platform/dshow/CodedSubtype.h"
#include "platform/dshow/Uuids.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/BrecStreamOrdinal.h"
#include "zanthe/analysis/ClassificationRemarks.h"
#include "zanthe/analysis/FileReader.h"
#include "zanthe/analysis/FileSignature.h"
#include "zanthe/analysis/IdentifierNames.h"
#include "zanthe/analysis/MP4ParseException.h"
#include "zanthe/analysis/MP4Parser.h"
#include "zanthe/analysis/MP4StreamTypes.h"
#include "zanthe/analysis/MediaFoundationChoice.h"
#include "zanthe/analysis/MediaOrientation.h"
#include "zanthe/analysis/PngMov.h"
#include "zanthe/analysis/PreferredFilters.h"
#include "zanthe/analysis/RecordingPath.h"
#include "zanthe/analysis/SourceFilter.h"
#include "zanthe/analysis/WindowsVersionProvider.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/audio/AudioRoute.h"
#include "zanthe/core/VideoRoute.h"
#include "zanthe/core/routes/DecoderRoutes.h"
#include "zanthe/detection/CodecDisplayName.h"

namespace Zanthe {

namespace {

// A system as it might be, to ask about the one that this is not.
class SupposedVersion final : public IWindowsVersionProvider {
public:
    explicit SupposedVersion(bool newer)
        : m_newer(newer) {}

    // IWindowsVersionProvider
    bool IsWindows62OrLater() const override { return m_newer; }

private:
    bool m_newer;
};

const char* MemberKindName(std::int32_t kind) {
    constexpr std::array<const char*, 10> names{
        "no member",    "numbered video", "numbered audio", "numbered screen track",
        "screen video", "camera video",   "microphone",     "system audio",
        "event data",   "manifest",
    };
    return names.at(static_cast<std::size_t>(kind));
}

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

const char* SubtypeSourceName(SubtypeSource source) {
    switch (source) {
    case SubtypeSource::Signature:
        return "signature";
    case SubtypeSource::Extension:
        return "extension";
    case SubtypeSource::Nothing:
        break;
    }
    return "nothing";
}

ClassifiedPath ParsePath(const std::wstring& path) {
    const RecordingPath recording(path);
    ClassifiedPath parsed;
    parsed.container = win32::WideToUtf8(recording.GetContainerPath());
    if (recording.kind != NoMember) {
        parsed.member = win32::WideToUtf8(recording.fileName.substr(recording.name.size() + 1));
    }
    parsed.kind = MemberKindName(recording.kind);
    parsed.stream = recording.index;
    parsed.memberCode = recording.memberCode;
    parsed.ordinal = BrecStreamOrdinal(path);
    return parsed;
}

// Formats of single pictures are called "png_pipe" and so on.
std::string ContentsName(const std::string& container) {
    constexpr std::string_view pipe = "_pipe";
    const std::string name = av::ContentsOf(win32::ExistingPath(container));
    const std::size_t at = name.rfind(pipe);
    const bool picture = at != std::string::npos && at + pipe.size() == name.size();
    return picture ? name.substr(0, at) + " picture" : name;
}

ClassifiedBackend BackendFor(const std::wstring& path, MediaFoundationPurpose purpose,
                             bool pngMov) {
    const auto isPngMov = [pngMov] { return pngMov; };
    return {ShouldUseMediaFoundation(path, purpose, boost::make_shared<SupposedVersion>(true),
                                     isPngMov),
            ShouldUseMediaFoundation(path, purpose, boost::make_shared<SupposedVersion>(false),
                                     isPngMov)};
}

// What this build has a backend behind; None needs none. A route that is chosen and missing here
// fails to open.
constexpr std::array<AudioRoute, 3> BuiltAudioRoutes{AudioRoute::Ffmpeg, AudioRoute::Recording,
                                                     AudioRoute::MediaFoundation};
constexpr std::array<VideoRoute, 1> BuiltVideoRoutes{VideoRoute::MediaFoundation};
constexpr std::array<OwnVideoDecoder, 5> BuiltOwnDecoders{
    OwnVideoDecoder::None, OwnVideoDecoder::LegacyRecording, OwnVideoDecoder::Recording,
    OwnVideoDecoder::PngMov, OwnVideoDecoder::Gif};

template <typename Routes, typename Route>
bool IsBuilt(const Routes& built, Route route) {
    return std::find(built.begin(), built.end(), route) != built.end();
}

const char* AudioRouteName(AudioRoute route) {
    switch (route) {
    case AudioRoute::Ffmpeg:
        return "FFmpeg";
    case AudioRoute::Recording:
        return "recording";
    case AudioRoute::MediaFoundation:
        return "Media Foundation";
    case AudioRoute::DirectShow:
        break;
    }
    return "DirectShow";
}

const char* OwnDecoderName(OwnVideoDecoder decoder) {
    switch (decoder) {
    case OwnVideoDecoder::LegacyRecording:
        return "legacy recording decoder";
    case OwnVideoDecoder::Recording:
        return "recording decoder";
    case OwnVideoDecoder::PngMov:
        return "PNG QuickTime decoder";
    case OwnVideoDecoder::Gif:
        return "GIF decoder";
    case OwnVideoDecoder::None:
        break;
    }
    return "none: no decoder for it";
}

ClassifiedRoute OwnDecoderRoute(OwnVideoDecoder decoder) {
    return {OwnDecoderName(decoder), IsBuilt(BuiltOwnDecoders, decoder)};
}

// As the factory decides, which also opens the file to see.
ClassifiedRoute FindVideoRoute(const std::string& path, int stream) {
    const auto opensAsPngMov = [&] {
        return DecoderRoutes().CreatePngMov(path, stream) != nullptr;
    };
    const VideoRoute route =
        ChooseVideoRoute(path, true, opensAsPngMov, boost::make_shared<WindowsVersionProvider>());
    switch (route) {
    case VideoRoute::OwnDecoder:
        return OwnDecoderRoute(ChooseOwnDecoder(path, opensAsPngMov));
    case VideoRoute::MediaFoundation:
        return {"Media Foundation", IsBuilt(BuiltVideoRoutes, route)};
    case VideoRoute::DirectShow:
        break;
    }
    return {"DirectShow", IsBuilt(BuiltVideoRoutes, route)};
}

ClassifiedRoute VideoRouteOf(const std::string& path, int stream) {
    try {
        return FindVideoRoute(path, stream);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        return {"", false, failure.what()};
    } catch (const char* failure) { // as backends on filter graphs throw their texts
        return {"", false, failure};
    }
}

ClassifiedRoute AudioRouteOf(const std::string& path) {
    const AudioRoute route = ChooseAudioRoute(path, boost::make_shared<WindowsVersionProvider>());
    return {AudioRouteName(route), IsBuilt(BuiltAudioRoutes, route)};
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

void ClassifyTracks(const std::wstring& container, FileClassification& result) {
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

void ClassifyFilters(const std::wstring& path, FileClassification& result) {
    const DetectedSubtype detected = DetectMediaSubtypeAndSource(path);
    result.subtype = SubtypeName(detected.subtype);
    result.subtypeSource = SubtypeSourceName(detected.source);
    const GUID filter = SelectSourceFilter(path);
    const char* name = SourceFilterName(filter);
    result.sourceFilterId = GuidText(filter);
    result.sourceFilter = name != nullptr ? name : result.sourceFilterId;
    for (const PreferredFilter& preferred : PreferredFiltersFor(path)) {
        result.preferredFilters.push_back(win32::WideToUtf8(preferred.library));
    }
}

void ClassifyBackends(const std::wstring& path, int videoStream, FileClassification& result) {
    result.audio = BackendFor(path, MediaFoundationPurpose::Audio, result.pngMov);
    result.videoSamples = BackendFor(path, MediaFoundationPurpose::VideoSamples, result.pngMov);
    result.detection = BackendFor(path, MediaFoundationPurpose::Detection, result.pngMov);
    result.system62 = WindowsVersionProvider().IsWindows62OrLater();
    result.audioRoute = AudioRouteOf(result.path);
    result.videoRoute = VideoRouteOf(result.path, videoStream);
}

} // namespace

FileClassification ClassifyFile(const std::string& path, int videoStream) {
    const std::wstring widePath = win32::Utf8ToWide(path);
    FileClassification result;
    result.path = path;
    result.parsed = ParsePath(widePath);
    result.contents = ContentsName(result.parsed.container);
    ClassifyFilters(widePath, result);
    ClassifyStreams(widePath, result);
    ClassifyBackends(widePath, videoStream, result);
    result.aacInMp4 = AudioMediaReaderFactory::IsMP4WithAACAudio(path);
    ClassifyTracks(win32::Utf8ToWide(result.parsed.container), result);
    MarkDoubtfulCodecs(result);
    ClassifyOrientation(widePath, result);
    result.remarks = RemarksOn(result);
    return result;
}

std::string ContainerPathOf(const std::string& path) {
    return win32::WideToUtf8(RecordingPath(path).GetContainerPath());
}

} // namespace Zanthe
