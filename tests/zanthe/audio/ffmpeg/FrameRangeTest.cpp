#include "zanthe/audio/ffmpeg/FrameRange.h"

#include <limits>

#include <gtest/gtest.h>

namespace FFMPEGDecoder {
namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();

TEST(FrameRange, IntersectionHoldsWhatBothHold) {
    EXPECT_EQ(Intersect({10, 20}, {25, 100}), (FrameRange{25, 5}));
    EXPECT_EQ(Intersect({10, 20}, {0, 100}), (FrameRange{10, 20}));
}

TEST(FrameRange, EmptyIntersectionIsZeroZero) {
    EXPECT_EQ(Intersect({10, 20}, {30, 5}), (FrameRange{0, 0}));
    EXPECT_EQ(Intersect({10, 0}, {10, 5}), (FrameRange{0, 0}));
}

TEST(FrameRange, UnionTakesInTheGapBetween) {
    EXPECT_EQ(Unite({10, 5}, {20, 5}), (FrameRange{10, 15}));
}

TEST(FrameRange, EndSaturates) {
    EXPECT_EQ((FrameRange{kMax - 1, 5}.End()), kMax);
    EXPECT_EQ(RangeBetween(kMin, kMax), (FrameRange{kMin, kMax}));
}

TEST(ScalePosition, TruncatesTowardZero) {
    EXPECT_EQ(ScalePosition(1000, 48000, 44100), 1088);
    EXPECT_EQ(ScalePosition(-1000, 48000, 44100), -1088);
}

TEST(ScalePosition, ProductIsExactAndResultSaturates) {
    EXPECT_EQ(ScalePosition(kMax / 2, 2, 2), kMax / 2);
    EXPECT_EQ(ScalePosition(kMax, 48000, 44100), kMax);
    EXPECT_EQ(ScalePosition(kMin, 48000, 44100), kMin);
}

} // namespace
} // namespace FFMPEGDecoder
