#include "tools/zanthe/VerifyCommand.h"

#include <random>
#include <sstream>
#include <utility>

#include "tools/zanthe/AudioVerifier.h"
#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/Progress.h"
#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/VerifyReport.h"
#include "tools/zanthe/VideoVerifier.h"
#include "tools/zanthe/VideoVerifyReport.h"
#include "zanthe/analysis/FileClassification.h"

namespace Program {

namespace {

// What came of the sound, or of the pictures.
struct Part {
    std::string state = "not asked for"; // "verified", "absent", "no reader"
    Json json = nullptr;
    std::string lines = {};
    std::string absent = {}; // why there is none; empty: there is
    std::int64_t reads = 0;
    std::int64_t differences = 0;
};

std::uint64_t RandomSeed() {
    std::random_device device;
    // 32 bits: short enough to be typed again.
    return device();
}

std::string Where(const ReadSpan& span, const VerifyRequest& request, int rate) {
    std::string text(NameOf(span.kind));
    if (span.kind == ReadKind::Random) {
        return text + ": " + std::to_string(span.index) + " of " + std::to_string(request.seeks);
    }
    return text + ": at " + Clock(span.start, rate);
}

std::string Where(const VideoRead& read) {
    return std::string(NameOf(read.kind)) + ": picture at " + ClockText(UnitsLookedFor(read.time));
}

template <typename Report>
Part PartOf(const Report& report, std::int64_t reads, std::int64_t differences) {
    std::ostringstream lines;
    PrintLines(report, lines);
    return {.state = "verified",
            .json = JsonOf(report),
            .lines = lines.str(),
            .absent = {},
            .reads = reads,
            .differences = differences};
}

Part VerifySound(const VerifySources& sources, const VerifyRequest& request, std::uint64_t seed) {
    const OpenedSound sound = sources.sound();
    VerifyReport report{.file = request.file, .rate = sound.rate, .seed = seed, .audio = {}};
    StandardProgress progress;
    AudioVerifier verifier(*sound.reader,
                           {.rate = sound.rate, .seeks = request.seeks, .seed = seed},
                           [&](const ReadSpan& span) {
                               ThrowIfInterrupted();
                               progress.Show(Where(span, request, sound.rate));
                           });
    report.audio = verifier.Run();
    if (report.audio.frames == 0 && report.audio.Equal()) {
        throw CommandError(request.file, "holds no sound");
    }
    return PartOf(report, report.audio.Spans(), report.audio.Differences());
}

Part VerifyVideo(const VerifySources& sources, const VerifyRequest& request, std::uint64_t seed) {
    const auto video = sources.video();
    VideoVerifyReport report{
        .file = request.file, .seed = seed, .facts = video->Facts(), .video = {}};
    StandardProgress progress;
    VideoVerifier verifier(*video, {.seeks = request.seeks, .seed = seed},
                           [&](const VideoRead& read) {
                               ThrowIfInterrupted();
                               progress.Show(Where(read));
                           });
    report.video = verifier.Run();
    if (report.video.pictures == 0 && report.video.Equal()) {
        const std::string& why = report.facts.ifNone;
        throw CommandError(request.file, why.empty() ? "holds no pictures"
                                                     : "no reader for its pictures: " + why);
    }
    return PartOf(report, report.video.Reads(), report.video.Differences());
}

// A part that the user did not name may be missing.
Part Try(bool required, Part (*verify)(const VerifySources&, const VerifyRequest&, std::uint64_t),
         const VerifySources& sources, const VerifyRequest& request, std::uint64_t seed) {
    try {
        return verify(sources, request, seed);
    } catch (const CommandError& error) {
        if (required) {
            throw;
        }
        const std::string reason(error.Reason());
        const bool isRead = reason.rfind("no reader", 0) != 0;
        return {.state = isRead ? "absent" : "no reader", .absent = reason};
    }
}

// "Failed to create ..." is the same for a file without sound and for one that is not read.
Part Explained(Part part, const VerifySources& sources) {
    if (part.absent.empty() || !sources.whyNoSound) {
        return part;
    }
    if (const SoundAbsence why = sources.whyNoSound(); !why.text.empty()) {
        part.state = why.isSilent ? "absent" : "no reader";
        part.absent = why.text;
    }
    return part;
}

Json AbsentJson(const Part& part) {
    return part.absent.empty() ? Json(nullptr) : Json(part.absent);
}

void PrintJson(const VerifyRequest& request, std::uint64_t seed, const Part& audio,
               const Part& video, std::ostream& out) {
    PrintJsonLine({{"command", "verify"},
                   {"file", request.file},
                   {"seed", seed},
                   {"audio_state", audio.state},
                   {"audio", audio.json},
                   {"audio_absent", AbsentJson(audio)},
                   {"video_state", video.state},
                   {"video", video.json},
                   {"video_absent", AbsentJson(video)},
                   {"differences", audio.differences + video.differences}},
                  out);
}

void PrintPart(const Part& part, const std::string& file, std::ostream& out) {
    out << part.lines;
    if (!part.absent.empty()) {
        out << OneLine(file) << ": " << OneLine(part.absent) << '\n';
    }
}

} // namespace

void Verify(const VerifySources& sources, const VerifyRequest& request, std::ostream& out) {
    const std::uint64_t seed = request.seed.value_or(RandomSeed());
    const Part audio =
        request.video && !request.audio
            ? Part{}
            : Explained(Try(request.audio, VerifySound, sources, request, seed), sources);
    const Part video = request.audio && !request.video
                           ? Part{}
                           : Try(request.video, VerifyVideo, sources, request, seed);
    if (!audio.absent.empty() && !video.absent.empty()) {
        throw CommandError(request.file, audio.absent + "; " + video.absent);
    }
    if (request.json) {
        PrintJson(request, seed, audio, video, out);
    } else {
        PrintPart(audio, request.file, out);
        PrintPart(video, request.file, out);
    }
    if (const std::int64_t differences = audio.differences + video.differences; differences > 0) {
        throw CommandError(request.file, std::to_string(differences) + " of " +
                                             std::to_string(audio.reads + video.reads) +
                                             " reads are not as they should be");
    }
}

void RunVerify(const VerifyRequest& request, std::ostream& out) {
    RequireReadableFile(Zanthe::ContainerPathOf(request.file));
    const AudioChoice choice{.rate = request.rate, .recontainer = request.recontainer};
    Verify({.sound = [&] { return OpenAudio(request.file, choice); },
            .video = [&] { return OpenVideo(request.file, request.choice); },
            .whyNoSound = [&] { return WhyNoSound(request.file); }},
           request, out);
}

} // namespace Program
