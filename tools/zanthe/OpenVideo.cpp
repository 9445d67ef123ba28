#include "tools/zanthe/OpenVideo.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <utility>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/DecoderVideo.h"
#include "tools/zanthe/GifTimes.h"
#include "tools/zanthe/H264Video.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/SampleReaderVideo.h"
#include "tools/zanthe/TrackChoice.h"
#include "tools/zanthe/TrackShape.h"
#include "tools/zanthe/VideoRefusal.h"
#include "zanthe/analysis/FileClassification.h"
#include "zanthe/core/DecoderFactory.h"

namespace Program {

namespace {

using Zanthe::DecoderFactory;
using Zanthe::FileClassification;
using Zanthe::VideoDecoderToVideoSampleReader;
using Zanthe::VideoSampleReader;

// A reader leaves the picture as it is stored where the boxes cannot be walked to the end, whatever
// the track's matrix says.
void RemarkLostTurn(const FileClassification& file, VideoFacts& facts) {
    const std::array<double, 4> upright{1, 0, 0, 1};
    const auto isTurned = [&](const Zanthe::ClassifiedTrack& track) {
        return track.kind == "video" && track.matrix != upright;
    };
    if (!file.mp4Problem.empty() && !file.orientation &&
        std::any_of(file.tracks.begin(), file.tracks.end(), isTurned)) {
        facts.remarks.push_back(file.mp4Problem +
                                ": it is shown as it is stored, though its matrix says otherwise");
    }
}

std::unique_ptr<VideoSampleReader> OpenReader(const FileClassification& file, int stream,
                                              Zanthe::DecoderOutputFormat format) {
    try {
        const std::unique_ptr<DecoderFactory> factory(
            DecoderFactory::Create(format, nullptr, true));
        std::unique_ptr<VideoSampleReader> reader(
            factory->CreateVideoSampleReader(file.path, stream, false));
        if (!reader) {
            throw VideoRefusal(file, "it could not be made");
        }
        return reader;
    } catch (const CommandError&) {
        throw;
    } catch (const std::exception& error) {
        throw VideoRefusal(file, error.what());
    } catch (const char* text) {
        // The graph side of the library throws its texts bare.
        throw VideoRefusal(file, text);
    }
}

bool IsRecording(const FileClassification& file) {
    return file.videoRoute.backend == "recording decoder";
}

Alpha AlphaOf(const FileClassification& file) {
    if (file.videoRoute.backend == "GIF decoder") {
        return Alpha::Premultiplied;
    }
    return file.videoRoute.backend == "PNG QuickTime decoder" ? Alpha::Straight : Alpha::None;
}

// The number of the track whose pictures the reader gives; it knows how to choose, or takes the
// first of pictures.
std::size_t TrackRead(const FileClassification& file, int stream) {
    if (file.videoRoute.backend == "PNG QuickTime decoder") {
        return static_cast<std::size_t>(stream);
    }
    const auto first = std::find_if(file.tracks.begin(), file.tracks.end(),
                                    [](const auto& track) { return track.kind == "video"; });
    return static_cast<std::size_t>(first - file.tracks.begin());
}

void SetShape(int width, int height, const VideoSampleReader& reader, VideoFacts& facts) {
    if (width > 0 && height > 0 && reader.outputWidth() > 0 && reader.outputHeight() > 0) {
        facts.aspectNumerator = std::int64_t{reader.outputHeight()} * width;
        facts.aspectDenominator = std::int64_t{reader.outputWidth()} * height;
    }
}

// What the file itself says of how its pictures are to be shown. The reader's own word, where it
// has one, goes before this, but where there are several tracks of pictures: the library then
// speaks of the last of them, whichever is read.
void TellShape(const FileClassification& file, int stream, const VideoSampleReader& reader,
               VideoFacts& facts) {
    if (!file.orientation) {
        return;
    }
    const auto& shown = *file.orientation;
    facts.rotation = shown.rotation;
    SetShape(shown.width, shown.height, reader, facts);
    const auto isPictures = [](const auto& track) { return track.kind == "video"; };
    const auto shape = ShapeOf(file, TrackRead(file, stream));
    if (shape && std::count_if(file.tracks.begin(), file.tracks.end(), isPictures) > 1) {
        facts.shapeIsOfTrack = true;
        facts.rotation = shape->rotation;
        facts.aspectNumerator = facts.aspectDenominator = 1;
        SetShape(shape->width, shape->height, reader, facts);
    }
}

// Decoders of recordings say nothing of what is wrong.
std::string IfNone(const FileClassification& file, int stream) {
    const auto number = static_cast<std::size_t>(stream);
    if (IsRecording(file) && number < file.streams.size()) {
        return "none of its pictures can be read (codec " + Printable(file.streams[number].codec) +
               ")";
    }
    return file.videoRoute.backend == "legacy recording decoder"
               ? "none of its pictures can be read"
               : std::string();
}

VideoFacts FactsOf(const FileClassification& file, int stream, const VideoSampleReader& reader) {
    VideoFacts facts{.alpha = AlphaOf(file), .stream = stream, .reader = file.videoRoute.backend};
    facts.ifNone = IfNone(file, stream);
    facts.echoesTimes = file.videoRoute.backend == "legacy recording decoder";
    if (file.videoRoute.backend == "GIF decoder") {
        facts.edges = GifTimes(file.path);
    }
    RemarkLostTurn(file, facts);
    TellShape(file, stream, reader, facts);
    return facts;
}

// Readers of recordings and of PNG images go by the number of the track; all others read the first
// of pictures, whatever the number.
bool ReaderChooses(const FileClassification& file) {
    return IsRecording(file) || file.pngMov;
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
    FileClassification file = Zanthe::ClassifyFile(path, choice.stream.value_or(0));
    int stream = choice.stream.value_or(0);
    if (ReaderChooses(file)) {
        stream = ChooseTrack(file, TrackKind::Pictures, choice.stream);
        if (stream != 0 && !choice.stream) {
            file = Zanthe::ClassifyFile(path, stream);
        }
    }
    std::unique_ptr<VideoSampleReader> reader = OpenReader(file, stream, choice.format);
    if (IsRecording(file) && (reader->outputWidth() <= 0 || reader->outputHeight() <= 0)) {
        throw RecordingRefusal(file);
    }
    try {
        VideoFacts facts = FactsOf(file, stream, *reader);
        if (choice.stream.value_or(0) != 0 &&
            dynamic_cast<Zanthe::WinH264SampleReader*>(reader.get()) != nullptr) {
            facts.remarks.push_back("its reader knows one stream alone: stream 0 is read, not " +
                                    std::to_string(*choice.stream));
        }
        return VideoOver(std::move(reader), facts);
    } catch (const std::exception& error) {
        throw VideoRefusal(file, error.what());
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

void PrintRemarks(const std::string& path, const VideoFacts& facts) {
    for (const std::string& remark : facts.remarks) {
        std::cerr << "zanthe: " << OneLine(path + ": " + remark) << '\n';
    }
}

} // namespace Program
