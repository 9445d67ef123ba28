#include "tools/zanthe/Sound.h"

#include <algorithm>
#include <vector>

#include "tools/zanthe/Interrupt.h"

namespace Program {

unsigned int SpanFrames(int rate) {
    return static_cast<unsigned int>(std::min<std::int64_t>(std::int64_t{rate} * 6, 1 << 18));
}

std::int64_t ReadSound(Zanthe::IAudioReader& reader, std::int64_t start, std::int64_t frames,
                       unsigned int spanFrames, const TakeSpan& take) {
    std::vector<float> left(spanFrames);
    std::vector<float> right(spanFrames);
    std::vector<float*> planes{left.data(), right.data()};
    std::int64_t done = 0;
    while (done < frames) {
        ThrowIfInterrupted();
        const auto wanted =
            static_cast<unsigned int>(std::min<std::int64_t>(frames - done, spanFrames));
        const unsigned int got =
            std::min(reader.FillAudioBuffer(start + done, wanted, planes), wanted);
        if (got > 0) {
            take(start + done, left.data(), right.data(), got);
        }
        done += got;
        if (got < wanted) {
            break;
        }
    }
    return done;
}

} // namespace Program
