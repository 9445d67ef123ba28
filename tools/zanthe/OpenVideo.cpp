#include "tools/zanthe/OpenVideo.h"

#include <utility>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/DecoderVideo.h"
#include "tools/zanthe/H264Video.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/SampleReaderVideo.h"
#include "zanthe/analysis/FileClassification.h"
#include "zanthe/core/DecoderFactory.h"

namespace Program {

namespace {

using Zanthe::DecoderFactory;
using Zanthe::FileClassification;
using Zanthe::VideoDecoderToVideoSampleReader;
using Zanthe::VideoSampleReader;

[[noreturn]] void Refuse(const std::string& path, const std::string& reason) {
    throw CommandError(path, "no reader for its pictures: " + reason);
}

std::unique_ptr<VideoSampleReader> OpenReader(const std::string& path, const VideoChoice& choice) {
    try {
        const std::unique_ptr<DecoderFactory> factory(
            DecoderFactory::Create(choice.format, nullptr, true));
        std::unique_ptr<VideoSampleReader> reader(
            factory->CreateVideoSampleReader(path, choice.stream, false));
        if (!reader) {
            Refuse(path, "it could not be made");
        }
        return reader;
    } catch (const CommandError&) {
        throw;
    } catch (const std::exception& error) {
        Refuse(path, error.what());
    } catch (const char* text) {
        // The graph side of the library throws its texts bare.
        Refuse(path, text);
    }
}

Alpha AlphaOf(const FileClassification& file) {
    if (file.videoRoute.backend == "GIF decoder") {
        return Alpha::Premultiplied;
    }
    return file.videoRoute.backend == "PNG QuickTime decoder" ? Alpha::Straight : Alpha::None;
}

// What the file itself says of how its pictures are to be shown. The reader's own word, where it
// has one, goes before this.
VideoFacts FactsOf(const std::string& path, int stream, const VideoSampleReader& reader) {
    const FileClassification file = Zanthe::ClassifyFile(path, stream);
    VideoFacts facts{.alpha = AlphaOf(file), .reader = file.videoRoute.backend};
    if (!file.orientation) {
        return facts;
    }
    const auto& shown = *file.orientation;
    facts.rotation = shown.rotation;
    if (shown.width > 0 && shown.height > 0 && reader.outputWidth() > 0 &&
        reader.outputHeight() > 0) {
        facts.aspectNumerator = std::int64_t{reader.outputHeight()} * shown.width;
        facts.aspectDenominator = std::int64_t{reader.outputWidth()} * shown.height;
    }
    return facts;
}

// The reader as the class that it is, taken over; null, and nothing taken, when it is another.
template <typename Reader>
std::unique_ptr<Reader> CastOwner(std::unique_ptr<VideoSampleReader>& reader) {
    auto* cast = dynamic_cast<Reader*>(reader.get());
    if (cast != nullptr) {
        static_cast<void>(reader.release());
    }
    return std::unique_ptr<Reader>(cast);
}

} // namespace

std::unique_ptr<IVideo> OpenVideo(const std::string& path, const VideoChoice& choice) {
    RequireReadableFile(Zanthe::ContainerPathOf(path));
    std::unique_ptr<VideoSampleReader> reader = OpenReader(path, choice);
    try {
        const VideoFacts facts = FactsOf(path, choice.stream, *reader);
        return VideoOver(std::move(reader), facts);
    } catch (const std::exception& error) {
        Refuse(path, error.what());
    }
}

std::unique_ptr<IVideo> VideoOver(std::unique_ptr<VideoSampleReader> reader,
                                  const VideoFacts& facts) {
    if (auto adapter = CastOwner<VideoDecoderToVideoSampleReader>(reader)) {
        return std::make_unique<DecoderVideo>(std::move(adapter), facts);
    }
    if (auto h264 = CastOwner<Zanthe::WinH264SampleReader>(reader)) {
        return std::make_unique<H264Video>(std::move(h264), facts);
    }
    return std::make_unique<SampleReaderVideo>(std::move(reader), facts);
}

} // namespace Program
