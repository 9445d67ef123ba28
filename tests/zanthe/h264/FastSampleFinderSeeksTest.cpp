#include "zanthe/h264/WinH264FastSampleFinder.h"

#include <cstdint>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/zanthe/h264/FastSampleFinderFixture.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Zanthe {
namespace {

TEST_F(FastSampleFinder, BackwardIsASeekAndARead) {
    Open();
    TimeFoundAt(700);
    m_script->reads = 0;
    EXPECT_EQ(TimeFoundAt(250), 200);
    EXPECT_EQ(m_script->reads, 1);
    EXPECT_THAT(m_script->streamsFlushed, ElementsAre(1U));
    EXPECT_THAT(m_script->positions, ElementsAre(250));
    const auto& operations = m_finder->readSampleOps();
    const std::vector<ReadSampleOp> last(operations.end() - 3, operations.end());
    EXPECT_THAT(last, ElementsAre(SeekBackward, ReadNext, ReturnedCurrent));
}

TEST_F(FastSampleFinder, ForwardSeeksAreTheDeciders) {
    std::vector<std::pair<std::int64_t, std::int64_t>> asked;
    Open([&](std::int64_t from, std::int64_t to) {
        asked.emplace_back(from, to);
        return to - from > 200;
    });
    EXPECT_EQ(TimeFoundAt(750), 700);
    EXPECT_EQ(m_script->reads, 1);
    EXPECT_THAT(asked, ElementsAre(std::pair(0, 750)));
    EXPECT_THAT(m_finder->readSampleOps(), ElementsAre(SeekForward, ReadNext, ReturnedCurrent));
    EXPECT_EQ(TimeFoundAt(810), 800);
    EXPECT_THAT(m_script->positions, ElementsAre(750));
}

TEST_F(FastSampleFinder, TheOriginIsTakenOffAfterManySeeks) {
    Use(Pictures(10, 100, 12'345));
    Open(Seek);
    for (const std::int64_t time : {900, 300, 0, 700, 500, 100, 800}) {
        EXPECT_EQ(TimeFoundAt(time), time);
    }
    EXPECT_THAT(m_script->positions,
                ElementsAre(13'245, 12'645, 12'345, 13'045, 12'845, 12'445, 13'145));
}

// From a key frame on, the source gives all that leads to the time.
TEST_F(FastSampleFinder, ALandingAheadOfTheTimeIsSteppedOn) {
    m_script->landing = [](std::int64_t) { return std::size_t{4}; };
    Open([](std::int64_t from, std::int64_t to) { return to - from > 600; });
    EXPECT_EQ(TimeFoundAt(750), 700);
    EXPECT_EQ(m_script->reads, 4);
    EXPECT_THAT(m_finder->attempts(), ElementsAre(4));
}

// A source that always lands behind the time: seeks until the loop is seen.
TEST_F(FastSampleFinder, LateLandingsAreGivenUp) {
    m_script->landing = [](std::int64_t) { return std::size_t{8}; };
    Open();
    EXPECT_EQ(TimeFoundAt(500), 500);
    m_script->reads = 0;
    EXPECT_FALSE(Find(At(50)));
    EXPECT_EQ(m_script->reads, 10);
    EXPECT_EQ(m_script->positions.size(), 10U);
    EXPECT_THAT(m_finder->attempts(), ElementsAre(5)); // of the search before
    EXPECT_EQ(m_finder->readSampleOps().back(), ReadNext);
}

TEST_F(FastSampleFinder, ATimeInAGapIsGivenUp) {
    Use({{0, 100, true}, {200, 100, true}, {300, 100, true}});
    Open();
    EXPECT_EQ(TimeFoundAt(250), 200);
    // Seeks to 150 land at 0; the step from there goes too far, and so on.
    EXPECT_FALSE(Find(At(150)));
    EXPECT_EQ(m_script->positions.size(), 10U);
    EXPECT_LT(m_script->reads, 30);
    EXPECT_EQ(TimeFoundAt(50), 0); // what is held serves on
}

TEST_F(FastSampleFinder, AlternatingLandingsAreGivenUp) {
    std::size_t turn = 0;
    m_script->landing = [&](std::int64_t) { return turn++ % 2 == 0 ? std::size_t{5} : 7; };
    Open();
    TimeFoundAt(900);
    m_script->reads = 0;
    EXPECT_FALSE(Find(At(0)));
    EXPECT_EQ(m_script->reads, 10);
}

TEST_F(FastSampleFinder, APositionThatCannotBeSet) {
    Open();
    TimeFoundAt(700);
    m_script->positionResult = E_FAIL;
    EXPECT_FALSE(Find(At(100)));
    EXPECT_EQ(m_finder->readSampleOps().back(), SeekFailed);
    EXPECT_EQ(m_finder->currentSample(), nullptr);
    EXPECT_THAT(m_finder->attempts(), ElementsAre(7));
    // Forward from nothing, as far as the stream has not been read.
    m_script->positionResult = S_OK;
    EXPECT_EQ(TimeFoundAt(850), 800);
}

TEST_F(FastSampleFinder, AForwardPositionThatCannotBeSet) {
    m_script->positionResult = E_FAIL;
    Open(Seek);
    EXPECT_FALSE(Find(At(100)));
    EXPECT_THAT(m_finder->readSampleOps(), ElementsAre(SeekForward, SeekFailed));
}

TEST_F(FastSampleFinder, ASeekFlushesItsStreamFirst) {
    Open();
    TimeFoundAt(100);
    m_script->flushResult = E_FAIL; // which is nobody's concern
    EXPECT_EQ(TimeFoundAt(0), 0);
    EXPECT_THAT(m_script->calls, ElementsAre(ReaderCall::Read, ReaderCall::Flush,
                                             ReaderCall::Position, ReaderCall::Read));
    EXPECT_THAT(m_script->streamsRead, Each(1U));
    EXPECT_THAT(m_script->streamsFlushed, ElementsAre(1U));
}

// The decider is told where the search stands: behind a seek that failed at the start, with nothing
// held, whatever was held before.
TEST_F(FastSampleFinder, AFailedSeekLeavesNothingBehind) {
    std::vector<std::pair<std::int64_t, std::int64_t>> asked;
    m_script->positionResult = E_FAIL;
    Open([&](std::int64_t from, std::int64_t to) {
        asked.emplace_back(from, to);
        return asked.size() >= 3; // by then two samples are held
    });
    EXPECT_FALSE(Find(At(300)));
    EXPECT_EQ(*m_script->living, 0);
    EXPECT_FALSE(Find(At(150)));
    EXPECT_FALSE(Find(At(250)));
    EXPECT_THAT(asked, ElementsAre(std::pair(0, 300), std::pair(100, 300), std::pair(200, 300),
                                   std::pair(0, 150), std::pair(0, 250)));
}

TEST_F(FastSampleFinder, OnlyTheLastTenSeeksAreLookedAt) {
    Open(Seek);
    for (const std::int64_t time : {900, 300, 800, 100, 700, 200, 600, 300, 900, 100, 500, 200}) {
        EXPECT_EQ(TimeFoundAt(time), time);
    }
    EXPECT_EQ(m_script->positions.size(), 12U);
    EXPECT_EQ(m_finder->seekTargets().size(), 10U);
    m_script->reads = 0;
    m_script->landing = [](std::int64_t) { return std::size_t{8}; };
    EXPECT_FALSE(Find(At(50)));
    EXPECT_LE(m_script->reads, 10);
}

// What looks like a loop holds back no search that goes on.
TEST_F(FastSampleFinder, AForwardSeekIsNoLoop) {
    m_script->landing = [](std::int64_t position) {
        return position < 900 ? std::size_t{8} : std::size_t{9};
    };
    Open(Seek);
    EXPECT_EQ(TimeFoundAt(850), 800);
    EXPECT_FALSE(Find(At(50)));
    EXPECT_FALSE(Find(At(50))); // still a loop
    EXPECT_EQ(TimeFoundAt(950), 900);
    EXPECT_EQ(m_finder->readSampleOps().back(), ReturnedCurrent);
}

} // namespace
} // namespace Zanthe
