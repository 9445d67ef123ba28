#include "platform/av/SoundClock.h"

#include <limits>

#include <gtest/gtest.h>

namespace {

constexpr AVRational kMilliseconds{1, 1000};
constexpr AVRational kTransport{1, 90000};

TEST(SoundClock, AClockOfFramesMeansWhatItSays) {
    const av::SoundClock clock({1, 44100}, -1024, 44100, 1, 0);
    EXPECT_EQ(clock.PositionOf(-1024), 0);
    EXPECT_EQ(clock.PositionOf(0), 1024);
    EXPECT_EQ(clock.PositionOf(7), 1031);
    EXPECT_EQ(clock.TimestampOf(1031), 7);
    EXPECT_TRUE(clock.IsFineEnough());
    EXPECT_TRUE(clock.IsExact());
}

TEST(SoundClock, UnitsTakeOutTheRoundingOfCoarseStamps) {
    const av::SoundClock clock(kMilliseconds, 5, 44100, 1024, 0);
    EXPECT_TRUE(clock.IsFineEnough());
    EXPECT_FALSE(clock.IsExact());
    for (std::int64_t packet = 0; packet < 100000; ++packet) {
        const std::int64_t stamp = 5 + packet * 1024 * 1000 / 44100;
        ASSERT_EQ(clock.PositionOf(stamp), packet * 1024);
    }
}

TEST(SoundClock, UnitsTakeOutTheRoundingOfTransportStreams) {
    const av::SoundClock clock(kTransport, 126000, 44100, 1152, 0);
    for (std::int64_t packet = 0; packet < 100000; ++packet) {
        ASSERT_EQ(clock.PositionOf(126000 + packet * 1152 * 90000 / 44100), packet * 1152);
    }
}

TEST(SoundClock, APhaseIsMadeUpForBeforeRounding) {
    const av::SoundClock clock(kMilliseconds, 0, 44100, 2048, 1500);
    EXPECT_EQ(clock.PositionOf(324), 8 * 2048); // 14288 frames
    EXPECT_EQ(clock.PositionOf(574), 13 * 2048);
}

TEST(SoundClock, AGapOfWholePacketsStays) {
    const av::SoundClock clock(kTransport, 0, 48000, 1024, 0);
    EXPECT_EQ(clock.PositionOf(1920 * 10), 10 * 1024);
    EXPECT_EQ(clock.PositionOf(1920 * 12), 12 * 1024);
}

TEST(SoundClock, MillisecondsAreTooCoarseForWhatHasNoUnits) {
    EXPECT_FALSE(av::SoundClock(kMilliseconds, 0, 44100, 1, 0).IsFineEnough());
    EXPECT_FALSE(av::SoundClock(kMilliseconds, 0, 44100, 64, 0).IsFineEnough());
    EXPECT_TRUE(av::SoundClock({1152, 44100}, 0, 44100, 1152, 0).IsFineEnough());
}

TEST(SoundClock, TimesAreRoundedToUnitsOf100Nanoseconds) {
    const av::SoundClock clock(kTransport, 126000, 48000, 1, 0);
    EXPECT_EQ(clock.TimeOf(0), 14'000'000);
    EXPECT_EQ(clock.TimeOf(1), 14'000'208);
    EXPECT_EQ(clock.TimeOf(48000), 24'000'000);
}

TEST(SoundClock, BoundlessStampsStayWithinBounds) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    const av::SoundClock clock({1000, 1}, 0, 192000, 1024, 0);
    EXPECT_GT(clock.PositionOf(kMost / 8), 0);
    EXPECT_LT(clock.PositionOf(-kMost / 8), 0);
    EXPECT_GE(clock.TimestampOf(kMost), 0);
}

} // namespace
