// Counts of sample frames and times in units of 100 ns, one from the other.
//
// By way of double, as the readers count: a time is the nearest unit to where its frame stands, so
// that the frame comes back out of it at any rate that there is.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace Zanthe {

inline constexpr double UnitsPerSecond = 10'000'000.0;

// The nearest whole number, halves away from zero; the nearest that 64 bits hold, and 0 for what is
// no number. Rates and times come from files and may be anything.
inline std::int64_t RoundedToInt64(double value) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= limit) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return value < -limit ? std::numeric_limits<std::int64_t>::min() : std::llround(value);
}

// Where `frame` stands, `rate` frames being a second.
inline std::int64_t TimeOfFrame(std::int64_t frame, std::uint32_t rate) {
    return RoundedToInt64(static_cast<double>(frame) / rate * UnitsPerSecond);
}

// The frame nearest to `time`.
inline std::int64_t FrameAtTime(std::int64_t time, std::uint32_t rate) {
    return RoundedToInt64(static_cast<double>(time) / UnitsPerSecond * rate);
}

} // namespace Zanthe
