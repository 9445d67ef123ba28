// Sample frames and times in units of 100 ns.
#pragma once

#include <cstdint>

namespace av {

// When a frame begins, or how long so many last, at `rate` Hz (positive): to the nearest unit.
std::int64_t TimeOfFrames(std::int64_t frames, int rate);

// How many whole frames fit into `time`: rounded towards the past where it is negative.
std::int64_t WholeFramesIn(std::int64_t time, int rate);

} // namespace av
