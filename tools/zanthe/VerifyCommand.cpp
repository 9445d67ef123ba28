#include "tools/zanthe/VerifyCommand.h"

#include <random>

#include "tools/zanthe/AudioVerifier.h"
#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/OpenAudio.h"
#include "tools/zanthe/Progress.h"
#include "tools/zanthe/VerifyReport.h"

namespace Program {

namespace {

std::uint64_t RandomSeed() {
    std::random_device device;
    // 32 bits: short enough to be typed again.
    return device();
}

std::string Where(const ReadSpan& span, const VerifyRequest& request) {
    std::string text(NameOf(span.kind));
    if (span.kind == ReadKind::Random) {
        return text + ": " + std::to_string(span.index) + " of " + std::to_string(request.seeks);
    }
    return text + ": at " + Clock(span.start, request.rate);
}

} // namespace

void VerifySound(Zanthe::IAudioReader& reader, const VerifyRequest& request, std::ostream& out) {
    VerifyReport report{.file = request.file,
                        .rate = request.rate,
                        .seed = request.seed.value_or(RandomSeed()),
                        .audio = {}};
    {
        StandardProgress progress;
        AudioVerifier verifier(reader,
                               {.rate = request.rate, .seeks = request.seeks, .seed = report.seed},
                               [&](const ReadSpan& span) {
                                   ThrowIfInterrupted();
                                   progress.Show(Where(span, request));
                               });
        report.audio = verifier.Run();
    }
    if (report.audio.frames == 0 && report.audio.Equal()) {
        throw CommandError(request.file, "holds no sound");
    }
    if (request.json) {
        PrintJson(report, out);
    } else {
        PrintLines(report, out);
    }
    if (!report.audio.Equal()) {
        throw CommandError(request.file, std::to_string(report.audio.Differences()) + " of " +
                                             std::to_string(report.audio.Spans()) +
                                             " reads are not as they should be");
    }
}

void RunVerify(const VerifyRequest& request, std::ostream& out) {
    const auto reader = OpenAudio(request.file, -1, request.rate);
    VerifySound(*reader, request, out);
}

} // namespace Program
