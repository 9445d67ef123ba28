#include "tools/zanthe/FrameCommand.h"

#include <array>
#include <filesystem>
#include <optional>
#include <sstream>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/DisplayPicture.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/OutputFile.h"
#include "tools/zanthe/PictureFile.h"
#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/VideoEnd.h"
#include "tools/zanthe/VideoJson.h"
#include "zanthe/analysis/FileClassification.h"

namespace Program {

namespace {

// What is told of a picture when it is written.
struct Written {
    Zanthe::MediaTime asked;
    std::string askedText;
    std::string output;
    Size size; // as written
    std::optional<std::int64_t> start;
    std::optional<std::int64_t> duration;
    std::optional<std::uint32_t> matrix;
    std::optional<std::uint32_t> range;
    bool onDevice = false;
    std::vector<std::string> operations;
};

// As the user wrote it, who may not know 2.95 again as 59/20. What has a colon is no plain seconds.
std::string AskedText(const FrameRequest& request, std::size_t index) {
    const std::string text =
        index < request.typed.size() ? request.typed[index] : FractionText(request.times[index]);
    return text.find(':') == std::string::npos ? text + " s" : text;
}

std::string RefusalText(IVideo& video, const FrameRequest& request, std::size_t index) {
    const std::string described = DescribeEnd(video);
    const std::string& end = described.empty() ? video.Facts().ifNone : described;
    return "has no picture at " + AskedText(request, index) + (end.empty() ? "" : ": " + end);
}

BitmapPtr PixelsOf(const Picture& picture, const FrameRequest& request, const VideoFacts& facts) {
    const LockedPixels pixels(*picture.sample);
    return request.asStored ? AsStored(pixels, facts) : AsShown(pixels, facts);
}

Written WriteOne(IVideo& video, const FrameRequest& request, std::size_t index,
                 const OutputFile& file, const std::string& name) {
    const Zanthe::MediaTime time = request.times[index];
    const std::optional<Picture> picture = video.At(time);
    if (!picture) {
        throw CommandError(request.file, RefusalText(video, request, index));
    }
    const BitmapPtr bitmap = PixelsOf(*picture, request, video.Facts());
    if (request.png.empty()) {
        SaveRaw(*bitmap, file.TemporaryPath(), name);
    } else {
        SavePng(*bitmap, file.TemporaryPath(), name);
    }
    return {.asked = time,
            .askedText = AskedText(request, index),
            .output = name,
            .size = {bitmap->GetWidth(), bitmap->GetHeight()},
            .start = picture->start,
            .duration = picture->duration,
            .matrix = picture->matrix,
            .range = picture->range,
            .onDevice =
                picture->sample->videoSampleFormat() == Zanthe::VideoSampleFormat::GraphicsDevice,
            .operations = video.Operations()};
}

Json MatrixName(const std::optional<std::uint32_t>& matrix) {
    constexpr std::array names{"not told", "BT.709", "BT.601", "SMPTE 240M"};
    return matrix && *matrix < names.size() ? Json(names[*matrix]) : Json(nullptr);
}

// Each thing done with how often it was done, in the order of the first times: a step is repeated
// for every picture on the way.
Json OperationsJson(const std::vector<std::string>& operations) {
    Json counts = Json::object();
    for (const std::string& operation : operations) {
        counts[operation] = counts.value(operation, 0) + 1;
    }
    return counts;
}

Json JsonOf(const Written& written) {
    return {{"asked", FractionText(written.asked)},
            {"asked_seconds", Zanthe::MediaTimeToSeconds(written.asked)},
            {"time_100ns", JsonOrNull(written.start)},
            {"duration_100ns", JsonOrNull(written.duration)},
            {"width", written.size.width},
            {"height", written.size.height},
            {"matrix", JsonOrNull(written.matrix)},
            {"matrix_name", MatrixName(written.matrix)},
            {"range", JsonOrNull(written.range)},
            {"memory", written.onDevice ? "device" : "system"},
            {"operations", OperationsJson(written.operations)},
            {"output", written.output}};
}

void PrintJson(const FrameRequest& request, const VideoFacts& facts,
               const std::vector<Written>& all, std::ostream& out) {
    Json frames = Json::array();
    for (const Written& written : all) {
        frames.push_back(JsonOf(written));
    }
    PrintJsonLine({{"command", "frame"},
                   {"file", request.file},
                   {"stream", facts.stream.value_or(request.choice.stream.value_or(0))},
                   {"format", static_cast<int>(request.choice.format)},
                   {"video", JsonOf(facts)},
                   {"as_stored", request.asStored},
                   {"output_format", request.png.empty() ? "bgra" : "png"},
                   {"frames", std::move(frames)}},
                  out);
}

void PrintLine(const Written& written, std::ostream& out) {
    std::ostringstream line;
    line << written.output << ": " << written.size.width << " x " << written.size.height
         << ", asked for " << written.askedText;
    if (written.start) {
        line << ", shown from " << ClockText(*written.start);
    }
    if (written.duration) {
        // A sample ends a unit before the next begins; people count to that.
        line << " for " << static_cast<double>(*written.duration + 1) / 10'000 << " ms";
    }
    out << OneLine(line.str()) << '\n';
}

void Print(const FrameRequest& request, const VideoFacts& facts, const std::vector<Written>& all,
           std::ostream& out) {
    if (request.json) {
        PrintJson(request, facts, all, out);
        return;
    }
    for (const Written& written : all) {
        PrintLine(written, out);
    }
}

} // namespace

std::string NumberedName(const std::string& output, std::size_t index, std::size_t count) {
    if (count == 1) {
        return output;
    }
    const std::filesystem::path path(output);
    const std::size_t width = std::to_string(count).size();
    std::string number = std::to_string(index + 1);
    number.insert(0, width - number.size(), '0');
    std::filesystem::path name = path.stem();
    name += "-" + number;
    name += path.extension();
    return (path.parent_path() / name).string();
}

void WriteFrames(IVideo& video, const FrameRequest& request, std::ostream& out) {
    const std::string& output = request.Output();
    const bool toStandardOutput = OutputFile::IsStandardOutput(output);
    if (toStandardOutput && request.times.size() > 1) {
        throw UsageError(output, "standard output takes one picture only");
    }
    std::vector<std::unique_ptr<OutputFile>> files;
    std::vector<Written> written;
    for (std::size_t i = 0; i < request.times.size(); ++i) {
        ThrowIfInterrupted();
        const std::string name = NumberedName(output, i, request.times.size());
        RequireOtherFile(Zanthe::ContainerPathOf(request.file), name);
        files.push_back(std::make_unique<OutputFile>(name));
        written.push_back(WriteOne(video, request, i, *files.back(), name));
    }
    ThrowIfInterrupted();
    for (const auto& file : files) {
        file->Commit();
    }
    Print(request, video.Facts(), written, ReportStream(output, out));
}

void RunFrame(const FrameRequest& request, std::ostream& out) {
    const std::unique_ptr<IVideo> video = OpenVideo(request.file, request.choice);
    WriteFrames(*video, request, out);
    PrintRemarks(request.file, video->Facts());
    RemarkName(request.png);
}

} // namespace Program
