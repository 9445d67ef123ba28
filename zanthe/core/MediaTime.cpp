#include "zanthe/core/MediaTime.h"

#include <numeric>

namespace Zanthe {

namespace {

constexpr std::uint64_t ReferenceTimesPerSecond = 10'000'000;

// Also of the most negative number, whose magnitude has no signed form.
std::uint64_t Magnitude(std::int64_t number) {
    const auto bits = static_cast<std::uint64_t>(number);
    return number < 0 ? 0 - bits : bits;
}

void TakeOutCommonDivisor(std::uint64_t& first, std::uint64_t& second) {
    const std::uint64_t divisor = std::gcd(first, second);
    first /= divisor;
    second /= divisor;
}

} // namespace

double MediaTimeToSeconds(MediaTime time) {
    return static_cast<double>(time.numerator()) / static_cast<double>(time.denominator());
}

std::int64_t MediaTimeToReferenceTime(MediaTime time) {
    // The fraction itself is in its lowest terms already; only the scale can share a divisor.
    const std::uint64_t n = Magnitude(time.numerator());
    auto d = static_cast<std::uint64_t>(time.denominator());
    std::uint64_t k = ReferenceTimesPerSecond;
    TakeOutCommonDivisor(k, d);
    // At most (2^64 - 1) / 2, so that the sign can always be put on.
    const auto rounded = static_cast<std::int64_t>((d + 2 * n * k) / (2 * d));
    return time.numerator() < 0 ? -rounded : rounded;
}

} // namespace Zanthe
