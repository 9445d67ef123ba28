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

namespace {

bool HasFrame(Zanthe::IAudioReader& reader, std::int64_t frame) {
    ThrowIfInterrupted();
    float left = 0;
    float right = 0;
    std::vector<float*> planes{&left, &right};
    return reader.FillAudioBuffer(frame, 1, planes) > 0;
}

} // namespace

std::int64_t FindSoundEnd(Zanthe::IAudioReader& reader, int rate) {
    constexpr std::int64_t farthest = std::int64_t{1} << 40; // frames; no sound is this long
    if (!HasFrame(reader, 0)) {
        return 0;
    }
    std::int64_t last = 0;
    std::int64_t behind = rate;
    while (behind < farthest && HasFrame(reader, behind)) {
        last = behind;
        behind *= 2;
    }
    while (behind - last > 1) {
        const std::int64_t middle = last + (behind - last) / 2;
        (HasFrame(reader, middle) ? last : behind) = middle;
    }
    return behind;
}

} // namespace Program
