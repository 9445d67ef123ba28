#include "zanthe/h264/SeekLoop.h"

#include <gtest/gtest.h>

namespace Zanthe {
namespace {

using Times = std::deque<std::int64_t>;
using Operations = std::deque<ReadSampleOp>;

// `count` entries that take turns; `last` is the newest.
template <typename Entry>
std::deque<Entry> Alternating(std::size_t count, Entry last, Entry before) {
    std::deque<Entry> log;
    for (std::size_t i = 0; i < count; ++i) {
        log.push_front(i % 2 == 0 ? last : before);
    }
    return log;
}

const Times OneTarget(10, 70);
const Times Rising{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
const Operations SeekAndRead =
    Alternating(10, ReadSampleOp::ReadNextSample, ReadSampleOp::SeekBackward);

TEST(SeekLoop, OneTargetAgainAndAgain) {
    EXPECT_TRUE(IsStuckInSeekLoop(OneTarget, SeekAndRead, Rising));
}

TEST(SeekLoop, NothingIsReportedBeforeTenSeeks) {
    const Times same(20, 5);
    EXPECT_FALSE(IsStuckInSeekLoop(Times(9, 70), SeekAndRead, same));
    EXPECT_FALSE(IsStuckInSeekLoop({}, SeekAndRead, same));
    const Operations few(SeekAndRead.begin() + 1, SeekAndRead.end());
    EXPECT_FALSE(IsStuckInSeekLoop(OneTarget, few, same));
}

TEST(SeekLoop, OnlyTheLastTenOperationsCount) {
    Operations longer{ReadSampleOp::SeekForward, ReadSampleOp::ReturnedCurrentSample};
    longer.insert(longer.end(), SeekAndRead.begin(), SeekAndRead.end());
    EXPECT_TRUE(IsStuckInSeekLoop(OneTarget, longer, Rising));
    for (std::size_t i = 0; i < 10; ++i) {
        Operations broken = SeekAndRead;
        broken[i] = ReadSampleOp::ReturnedPreviousSample;
        EXPECT_FALSE(IsStuckInSeekLoop(OneTarget, broken, Rising)) << i;
    }
    // The other way round it is no seek and read.
    EXPECT_FALSE(IsStuckInSeekLoop(
        OneTarget, Alternating(10, ReadSampleOp::SeekBackward, ReadSampleOp::ReadNextSample),
        Rising));
}

TEST(SeekLoop, OtherwiseTheSampleTimesDecide) {
    Operations broken = SeekAndRead;
    broken.back() = ReadSampleOp::ReturnedCurrentSample;
    const Times alternating = Alternating<std::int64_t>(20, 3, 8);
    EXPECT_TRUE(IsStuckInSeekLoop(OneTarget, broken, alternating));
    Times targets = OneTarget;
    targets.front() = 71;
    EXPECT_TRUE(IsStuckInSeekLoop(targets, SeekAndRead, alternating));
    EXPECT_TRUE(IsStuckInSeekLoop(targets, SeekAndRead, Times(20, 4)));
    EXPECT_FALSE(IsStuckInSeekLoop(targets, SeekAndRead, Rising));
}

TEST(SeekLoop, OnlyTheLastTwentySampleTimesCount) {
    Times targets = OneTarget;
    targets.back() = 71;
    Times times = Alternating<std::int64_t>(20, 3, 8);
    times.push_front(99);
    EXPECT_TRUE(IsStuckInSeekLoop(targets, SeekAndRead, times));
    for (std::size_t i = 1; i <= 20; ++i) {
        Times broken = times;
        broken[i] = 99;
        EXPECT_FALSE(IsStuckInSeekLoop(targets, SeekAndRead, broken)) << i;
    }
}

TEST(SeekLoop, FewSampleTimesAlternateOfThemselves) {
    Times targets = OneTarget;
    targets.back() = 71;
    EXPECT_TRUE(IsStuckInSeekLoop(targets, SeekAndRead, {5}));
    EXPECT_TRUE(IsStuckInSeekLoop(targets, SeekAndRead, {5, 6}));
    EXPECT_FALSE(IsStuckInSeekLoop(targets, SeekAndRead, {5, 6, 7}));
    EXPECT_TRUE(IsStuckInSeekLoop(targets, SeekAndRead, {5, 6, 5}));
}

} // namespace
} // namespace Zanthe
