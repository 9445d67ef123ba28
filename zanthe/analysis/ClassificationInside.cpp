#include "zanthe/analysis/ClassificationInside.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/av/FileFacts.h"
#include "platform/com/ClassRegistry.h"
#include "platform/com/ComPtr.h"
#include "platform/mf/NativeType.h"
#include "platform/wic/WinCodec.h"
#include "platform/win32/File.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"
#include "zanthe/h264/SourceReaderSetup.h"
#include "zanthe/images/PdfImageLoader.h"

namespace Zanthe {

namespace {

bool IsPicture(const FileClassification& file) {
    return file.contents.ends_with(" picture");
}

bool OpensAsImage(const std::string& path) {
    com::ComPtr<IWICImagingFactory> factory;
    com::ComPtr<IWICBitmapDecoder> decoder;
    return SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_IWICImagingFactory, factory.PutVoid())) &&
           SUCCEEDED(factory->CreateDecoderFromFilename(
               win32::Utf8ToWide(path).c_str(), nullptr, GENERIC_READ,
               WICDecodeMetadataCacheOnDemand, decoder.Put()));
}

std::string ImageRouteOf(const FileClassification& file) {
    if (file.contents == "pdf") {
        return "PDF loader";
    }
    return OpensAsImage(file.path) ? "image loader" : "";
}

ClassifiedContent Describe(const av::FileStream& stream) {
    ClassifiedContent content;
    if (stream.kind == av::TrackKind::Video) {
        content.kind = "video";
        content.codec = av::CodecName(stream.video.codec);
        content.width = stream.video.width;
        content.height = stream.video.height;
        content.frameRate = av_q2d(stream.video.frameRate);
    } else {
        content.kind = "audio";
        content.codec = av::CodecName(stream.codec);
        content.sampleRate = stream.sampleRate;
        content.channels = stream.channels;
    }
    return content;
}

const av::FileStream* FirstOf(const av::FileFacts& facts, av::TrackKind kind) {
    const auto found = std::find_if(facts.streams.begin(), facts.streams.end(),
                                    [&](const auto& stream) { return stream.kind == kind; });
    return found == facts.streams.end() ? nullptr : &*found;
}

bool IsEncrypted(const FileClassification& file, std::string_view kind, std::string_view code) {
    const auto first = std::find_if(file.tracks.begin(), file.tracks.end(),
                                    [&](const auto& track) { return track.kind == kind; });
    return first != file.tracks.end() && first->codec == code;
}

// A recording's and Media Foundation's readers take what their own part of the engine finds; it is
// in the codec that they differ.
std::string VideoObstacle(const FileClassification& file, const av::FileFacts& facts) {
    const av::FileStream* stream = FirstOf(facts, av::TrackKind::Video);
    if (stream == nullptr) {
        return "the file has no pictures";
    }
    if (IsEncrypted(file, "video", "encv")) {
        return "its video is encrypted";
    }
    GUID subtype{};
    if (file.videoRoute.backend == "Media Foundation" &&
        !IsSupportedVideo(mf::NativeTypeOf(*stream, facts.container).Get(), &subtype)) {
        return std::string("its video is ") + av::CodecName(stream->video.codec) +
               ", neither H.264, HEVC nor MPEG-4 part 2";
    }
    return av::HasDecoder(stream->video.codec)
               ? ""
               : std::string("nothing decodes its video, ") + av::CodecName(stream->video.codec);
}

std::string SoundObstacle(const FileClassification& file, const av::FileFacts& facts) {
    const av::FileStream* stream = FirstOf(facts, av::TrackKind::Audio);
    if (stream == nullptr) {
        return "the file has no sound";
    }
    if (IsEncrypted(file, "audio", "enca")) {
        return "its sound is encrypted";
    }
    return av::HasDecoder(stream->codec)
               ? ""
               : std::string("nothing decodes its sound, ") + av::CodecName(stream->codec);
}

// Those of the decoders that take one kind of file are asked by what the file is.
std::string ObstacleOfOwnDecoder(const FileClassification& file) {
    const std::string& backend = file.videoRoute.backend;
    if (backend == "GIF decoder" && !file.contents.empty() && file.contents != "gif") {
        return "the file is no GIF";
    }
    return backend.starts_with("none") ? "there is no decoder for it" : "";
}

// Of a file that is there.
constexpr const char* Unreadable = "what is in the file cannot be read";

bool ReadsStreams(const std::string& backend) {
    return backend == "Media Foundation" || backend == "recording" || backend == "FFmpeg" ||
           backend == "recording decoder";
}

void FindObstacles(const std::optional<av::FileFacts>& facts, FileClassification& file) {
    std::error_code unknown;
    const bool isThere =
        std::filesystem::is_regular_file(win32::ExistingPath(file.parsed.container), unknown);
    if (isThere && ReadsStreams(file.audioRoute.backend)) {
        file.audioRoute.obstacle = facts ? SoundObstacle(file, *facts) : Unreadable;
    }
    if (!ReadsStreams(file.videoRoute.backend)) {
        file.videoRoute.obstacle = ObstacleOfOwnDecoder(file);
    } else if (isThere) {
        file.videoRoute.obstacle = facts ? VideoObstacle(file, *facts) : Unreadable;
    }
}

} // namespace

void ClassifyInside(FileClassification& file) {
    const std::string container = win32::ExistingPath(file.parsed.container);
    if (LooksLikePdf(container)) {
        file.contents = "pdf";
    }
    file.imageRoute = ImageRouteOf(file);
    const auto facts = av::ReadFileFacts(container);
    FindObstacles(facts, file);
    if (!facts || IsPicture(file)) {
        return;
    }
    file.duration = facts->duration;
    std::transform(facts->streams.begin(), facts->streams.end(), std::back_inserter(file.inside),
                   Describe);
}

} // namespace Zanthe
