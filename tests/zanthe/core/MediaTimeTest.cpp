#include "zanthe/core/MediaTime.h"

#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

using Zanthe::MediaTime;
using Zanthe::MediaTimeToReferenceTime;
using Zanthe::MediaTimeToSeconds;

namespace {

constexpr std::int64_t Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t Min = std::numeric_limits<std::int64_t>::min();

TEST(MediaTime, IsANormalisedFraction) {
    static_assert(std::is_same_v<MediaTime, boost::rational<std::int64_t>>);
    const MediaTime time(6, -4);
    EXPECT_EQ(time.numerator(), -3);
    EXPECT_EQ(time.denominator(), 2);
}

TEST(MediaTime, AZeroDenominatorThrows) {
    EXPECT_THROW(MediaTime(1, 0), boost::bad_rational);
    EXPECT_THROW(MediaTime(0, 0), boost::bad_rational);
}

TEST(MediaTimeToSeconds, DividesAsDoubles) {
    EXPECT_EQ(MediaTimeToSeconds(MediaTime(0)), 0.0);
    EXPECT_EQ(MediaTimeToSeconds(MediaTime(1001, 30000)), 1001.0 / 30000.0);
    EXPECT_EQ(MediaTimeToSeconds(MediaTime(-7, 2)), -3.5);
}

TEST(MediaTimeToSeconds, OfTheExtremes) {
    EXPECT_EQ(MediaTimeToSeconds(MediaTime(Max)), 9223372036854775808.0);
    EXPECT_EQ(MediaTimeToSeconds(MediaTime(Min)), -9223372036854775808.0);
    EXPECT_EQ(MediaTimeToSeconds(MediaTime(1, Max)), 1.0 / 9223372036854775808.0);
}

TEST(MediaTimeToReferenceTime, CountsHundredsOfNanoseconds) {
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(0)), 0);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(1)), 10000000);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(1, 10000000)), 1);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(1001, 30000)), 333667);         // 333666.67
    EXPECT_EQ(MediaTimeToReferenceTime(100 * MediaTime(1001, 30000)), 33366667); // .67
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(1, 3)), 3333333);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(2, 3)), 6666667);
}

TEST(MediaTimeToReferenceTime, TiesGoAwayFromZero) {
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(1, 20000000)), 1); // 0.5
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(3, 20000000)), 2); // 1.5
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(5, 20000000)), 3); // 2.5
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(-1, 20000000)), -1);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(-3, 20000000)), -2);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(-5, 20000000)), -3);
}

TEST(MediaTimeToReferenceTime, EitherSideOfATie) {
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(49999999, 1000000000000000)), 0);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(50000001, 1000000000000000)), 1);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(-49999999, 1000000000000000)), 0);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(-50000001, 1000000000000000)), -1);
}

TEST(MediaTimeToReferenceTime, ANegativeTimeIsTheNegation) {
    for (std::int64_t numerator = 1; numerator < 500; ++numerator) {
        const MediaTime time(numerator * 1234567, 90000);
        EXPECT_EQ(MediaTimeToReferenceTime(-time), -MediaTimeToReferenceTime(time));
    }
}

// The products would not fit 64 bits, were the scale not reduced by the denominator first.
TEST(MediaTimeToReferenceTime, ReducesBeforeItMultiplies) {
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(Max, 10000000)), Max);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(9000000000000001, 20000)), 4500000000000000500);
}

TEST(MediaTimeToReferenceTime, LastWholeSecondThatFits) {
    // d + 2nk < 2^64 with d = 1.
    constexpr std::int64_t last = 922337203685;
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(last)), last * 10000000);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(-last)), -last * 10000000);
}

TEST(MediaTimeToReferenceTime, BehindThatItWrapsUnsigned) {
    constexpr std::uint64_t n = 922337203686;
    const auto wrapped = static_cast<std::int64_t>((1 + 2 * n * 10000000) / 2);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(922337203686)), wrapped);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(-922337203686)), -wrapped);
}

TEST(MediaTimeToReferenceTime, OfTheExtremes) {
    // 2 * (2^63 - 1) * 10^7 = -2 * 10^7 in 64 bits.
    constexpr std::uint64_t product = 0 - std::uint64_t{20000000};
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(Max)),
              static_cast<std::int64_t>((product + 1) / 2));
    // 2 * 2^63 * 10^7 = 0 in 64 bits.
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(Min)), 0);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(1, Max)), 0);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(-1, Max)), 0);
    // d + 2nk = Max + 2(Max - 1)k and 2d, all below 2^64 or wrapped, as the formula has it.
    constexpr auto d = static_cast<std::uint64_t>(Max);
    EXPECT_EQ(MediaTimeToReferenceTime(MediaTime(Max - 1, Max)),
              static_cast<std::int64_t>((d + 2 * (d - 1) * 10000000) / (2 * d)));
}

} // namespace
