#include "platform/av/SoundTime.h"

extern "C" {
#include <libavutil/mathematics.h>
}

namespace av {

namespace {

constexpr std::int64_t kUnitsPerSecond = 10'000'000;

} // namespace

std::int64_t TimeOfFrames(std::int64_t frames, int rate) {
    return av_rescale_rnd(frames, kUnitsPerSecond, rate, AV_ROUND_NEAR_INF);
}

std::int64_t WholeFramesIn(std::int64_t time, int rate) {
    return av_rescale_rnd(time, rate, kUnitsPerSecond, AV_ROUND_DOWN);
}

} // namespace av
