#include "zanthe/analysis/FileClassification.h"

#include <array>
#include <memory>
#include <new>
#include <string_view>

#include <boost/make_shared.hpp>

#include "platform/dshow/CodedSubtype.h"
#include "platform/dshow/Uuids.h"
#include "platform/win32/Text.h"
#include "zanthe/analysis/BrecStreamOrdinal.h"
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

ClassifiedBackend BackendFor(const std::wstring& path, MediaFoundationPurpose purpose) {
    return {ShouldUseMediaFoundation(path, purpose, boost::make_shared<SupposedVersion>(true)),
            ShouldUseMediaFoundation(path, purpose, boost::make_shared<SupposedVersion>(false))};
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

// As the factory decides for stream 0, which is also who opens the file to see.
std::string FindVideoRoute(const std::string& path) {
    const auto opensAsPngMov = [&] { return DecoderRoutes().CreatePngMov(path, 0) != nullptr; };
    switch (
        ChooseVideoRoute(path, true, opensAsPngMov, boost::make_shared<WindowsVersionProvider>())) {
    case VideoRoute::OwnDecoder:
        return OwnDecoderName(ChooseOwnDecoder(path, opensAsPngMov));
    case VideoRoute::MediaFoundation:
        return "Media Foundation";
    case VideoRoute::DirectShow:
        break;
    }
    return "DirectShow";
}

std::string VideoRouteText(const std::string& path) {
    try {
        return FindVideoRoute(path);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& failure) {
        return std::string("fails: ") + failure.what();
    } catch (const char* failure) { // as backends on filter graphs throw their texts
        return std::string("fails: ") + failure;
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
    result.parWidth = track.parWidth;
    result.parHeight = track.parHeight;
    result.matrix = track.matrix;
    result.volume = track.volume;
    return result;
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
        result.mp4Problem = StartsAsMp4(container)
                                ? "its boxes cannot be walked to the end"
                                : "the file cannot be opened, or its first box is not an ftyp";
    }
    for (const MP4TrackInfo& track : parser.Tracks()) {
        result.tracks.push_back(Classify(track));
    }
    for (const MP4StreamType& stream : ReadMP4StreamTypes(container)) {
        result.streams.push_back(std::string(TrackKindName(stream.type)) + ' ' + stream.codec);
    }
}

void ClassifyOrientation(const std::wstring& path, FileClassification& result) {
    const MediaOrientation orientation = ReadMediaOrientation(path);
    result.orientation = orientation.matrix;
    result.orientationWidth = orientation.width;
    result.orientationHeight = orientation.height;
    result.rotation = RotationFromOrientation(orientation);
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

void ClassifyBackends(const std::wstring& path, FileClassification& result) {
    const auto system = boost::make_shared<WindowsVersionProvider>();
    result.audio = BackendFor(path, MediaFoundationPurpose::Audio);
    result.videoSamples = BackendFor(path, MediaFoundationPurpose::VideoSamples);
    result.detection = BackendFor(path, MediaFoundationPurpose::Detection);
    result.system62 = system->IsWindows62OrLater();
    result.audioRoute = AudioRouteName(ChooseAudioRoute(result.path, system));
    result.videoRoute = VideoRouteText(result.path);
}

} // namespace

FileClassification ClassifyFile(const std::string& path) {
    const std::wstring widePath = win32::Utf8ToWide(path);
    FileClassification result;
    result.path = path;
    result.parsed = ParsePath(widePath);
    ClassifyFilters(widePath, result);
    ClassifyBackends(widePath, result);
    result.pngMov = IsMovWithPngVideo(widePath);
    result.aacInMp4 = AudioMediaReaderFactory::IsMP4WithAACAudio(path);
    ClassifyTracks(win32::Utf8ToWide(result.parsed.container), result);
    ClassifyOrientation(widePath, result);
    return result;
}

std::string ContainerPathOf(const std::string& path) {
    return win32::WideToUtf8(RecordingPath(path).GetContainerPath());
}

} // namespace Zanthe
