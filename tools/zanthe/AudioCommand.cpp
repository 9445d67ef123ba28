#include "tools/zanthe/AudioCommand.h"

#include <iomanip>
#include <limits>
#include <sstream>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/JsonLine.h"
#include "tools/zanthe/OpenAudio.h"
#include "tools/zanthe/OutputFile.h"
#include "tools/zanthe/Progress.h"
#include "tools/zanthe/SoundAbsence.h"
#include "zanthe/audio/WavWriter.h"

namespace Program {

namespace {

double SecondsOf(std::int64_t frames, int rate) {
    return static_cast<double>(frames) / rate;
}

void PrintJson(const AudioRequest& request, std::int64_t frames, std::ostream& out) {
    const Json result{
        {"command", "audio"},
        {"file", request.file},
        {"rate", request.rate},
        {"channels", SoundChannels},
        {"format", request.isFloat ? "float32" : "pcm16"},
        {"start", request.start},
        {"frames", frames},
        {"seconds", SecondsOf(frames, request.rate)},
        {"output", request.output},
    };
    PrintJsonLine(result, out);
}

void PrintLine(const AudioRequest& request, std::int64_t frames, std::ostream& out) {
    std::ostringstream line;
    line << request.output << ": " << frames << " frames (" << std::fixed << std::setprecision(3)
         << SecondsOf(frames, request.rate) << " s) from frame " << request.start << " at "
         << request.rate << " Hz, stereo, " << (request.isFloat ? "32 bit float" : "16 bit");
    out << OneLine(line.str()) << '\n';
}

// The library's text is the same for a file without sound and for one that is not read.
OpenedSound OpenSound(const AudioRequest& request) {
    try {
        return OpenAudio(
            request.file,
            {.track = request.track, .rate = request.rate, .recontainer = request.recontainer});
    } catch (const CommandError&) {
        RequireReadableFile(request.file);
        if (!request.track && WhyNoSound(request.file).isSilent) {
            throw CommandError(request.file, "has no sound");
        }
        throw;
    }
}

// Of sound that was opened and gives nothing.
std::string NothingText(const AudioRequest& request) {
    if (request.start > 0) {
        return "has no sound at frame " + std::to_string(request.start);
    }
    return !request.track && WhyNoSound(request.file).isSilent ? "has no sound" : "holds no sound";
}

} // namespace

std::int64_t WriteSound(Zanthe::IAudioReader& reader, const AudioRequest& request,
                        const std::string& path, std::int64_t maxFrames) {
    const std::int64_t wanted = request.frames.value_or(std::numeric_limits<std::int64_t>::max());
    Zanthe::WavWriter writer(path, request.Format(), request.rate);
    StandardProgress progress;
    const auto take = [&](std::int64_t first, const float* left, const float* right,
                          unsigned int count) {
        if (first - request.start > maxFrames - std::int64_t{count}) {
            throw CommandError(request.output, "would exceed the " + std::to_string(maxFrames) +
                                                   " frames that a WAV file can hold");
        }
        writer.Append(left, right, count);
        progress.Show("read to " + Clock(first + count, request.rate));
    };
    const std::int64_t frames =
        ReadSound(reader, request.start, wanted, SpanFrames(request.rate), take);
    if (frames == 0 && wanted > 0) {
        throw CommandError(request.file, NothingText(request));
    }
    if (!writer.Finish()) {
        throw CommandError(request.output, "could not be written whole");
    }
    return frames;
}

void RunAudio(const AudioRequest& asked, std::ostream& out) {
    const OpenedSound sound = OpenSound(asked);
    AudioRequest request = asked;
    request.rate = sound.rate;
    RequireOtherFile(request.file, request.output);
    OutputFile output(request.output);
    const std::int64_t frames = WriteSound(*sound.reader, request, output.TemporaryPath(),
                                           Zanthe::WavWriter::MaxFrames(request.Format()));
    ThrowIfInterrupted();
    output.Commit();
    std::ostream& report = ReportStream(request.output, out);
    if (request.json) {
        PrintJson(request, frames, report);
    } else {
        PrintLine(request, frames, report);
    }
}

} // namespace Program
