// Sums of times that come from files, which may be anything.
#pragma once

#include <cstdint>
#include <limits>

namespace Zanthe {

// a + b, or the nearest number that 64 bits hold.
constexpr std::int64_t SaturatingSum(std::int64_t a, std::int64_t b) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    if (b > 0 && a > most - b) {
        return most;
    }
    return b < 0 && a < least - b ? least : a + b;
}

// a - b, or the nearest number that 64 bits hold.
constexpr std::int64_t SaturatingDifference(std::int64_t a, std::int64_t b) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    if (b < 0 && a > most + b) {
        return most;
    }
    return b > 0 && a < least + b ? least : a - b;
}

} // namespace Zanthe
