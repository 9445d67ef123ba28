#include "zanthe/h264/WinH264FastSampleFinder.h"

#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
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

TEST_F(FastSampleFinder, TheFirstSampleAnswersAtOnce) {
    Open();
    EXPECT_NE(m_finder->currentSample(), nullptr);
    EXPECT_EQ(TimeFoundAt(0), 0);
    EXPECT_EQ(m_finder->currentSample(), nullptr);
    EXPECT_EQ(m_script->reads, 0);
    EXPECT_THAT(m_finder->readSampleOps(), ElementsAre(ReturnedCurrent));
    EXPECT_THAT(m_finder->attempts(), ElementsAre(0));
    EXPECT_THAT(m_seen, ElementsAre(0));
}

TEST_F(FastSampleFinder, ARepeatCostsNothing) {
    Open();
    const auto first = Find(At(50));
    EXPECT_EQ(Find(At(50)), first);
    EXPECT_EQ(Find(At(99)), first);
    EXPECT_EQ(m_script->reads, 0);
    EXPECT_THAT(m_finder->readSampleOps(),
                ElementsAre(ReturnedCurrent, ReturnedPrevious, ReturnedPrevious));
    EXPECT_THAT(m_finder->attempts(), ElementsAre(0, 0, 0));
}

TEST_F(FastSampleFinder, TheNextPictureCostsOneRead) {
    Open();
    for (std::int64_t time = 0; time < 1000; time += 100) {
        EXPECT_EQ(TimeFoundAt(time), time);
        EXPECT_EQ(m_script->reads, time / 100);
    }
    EXPECT_THAT(m_script->positions, IsEmpty());
    EXPECT_THAT(m_script->streamsFlushed, IsEmpty());
}

TEST_F(FastSampleFinder, TheSampleBeforeIsHeld) {
    Open();
    EXPECT_EQ(TimeFoundAt(300), 300);
    // The one found sits where the one before was, until the next is read.
    EXPECT_EQ(TimeFoundAt(400), 400);
    m_script->reads = 0;
    EXPECT_EQ(TimeFoundAt(400), 400);
    EXPECT_EQ(m_script->reads, 0);
}

TEST_F(FastSampleFinder, Boundaries) {
    Use({{0, 100, true}, {150, 100, true}, {250, 100, true}});
    Open();
    EXPECT_EQ(TimeFoundAt(149), 150); // one unit before the start
    EXPECT_EQ(TimeFoundAt(249), 150); // held, though the next one would serve too
    EXPECT_EQ(TimeFoundAt(250), 250); // the end is not covered
    EXPECT_EQ(TimeFoundAt(349), 250);
}

TEST_F(FastSampleFinder, NegativeTimesAreZero) {
    Open();
    EXPECT_EQ(TimeFoundAt(-1), 0);
    EXPECT_EQ(Find(MediaTime(-1'000'000, 3)), Find(MediaTime(0)));
}

TEST_F(FastSampleFinder, TimesAreCut) {
    Use(Pictures(3, 333'333));
    Open();
    EXPECT_EQ(Find(MediaTime(1, 30)), Find(At(333'333))); // 333333.3
    LONGLONG time = 0;
    Find(MediaTime(1, 30))->GetSampleTime(&time);
    EXPECT_EQ(time, 333'333);
}

// 41 / 25 s in doubles is a unit short of 1.64 s. That unit belongs to the next picture where a
// sample lasts until a unit before it, as the reader's samples do.
TEST_F(FastSampleFinder, EachPictureAnswersToItsOwnTime) {
    std::vector<Picture> pictures = Pictures(100, 400'000);
    for (Picture& picture : pictures) {
        --picture.duration;
    }
    Use(std::move(pictures));
    Open();
    for (int i = 0; i < 100; ++i) {
        LONGLONG time = 0;
        Find(MediaTime(i, 25))->GetSampleTime(&time);
        EXPECT_EQ(time, i * 400'000);
    }
}

TEST_F(FastSampleFinder, FineFractionsAreCutToo) {
    Open();
    constexpr std::int64_t fine = 1'000'000'000'000'000'000;
    LONGLONG time = 0;
    Find(MediaTime(25'000'000'000'001, fine))->GetSampleTime(&time); // 250 units and a little
    EXPECT_EQ(time, 200);
}

TEST_F(FastSampleFinder, BeyondTheDurationThereIsNothing) {
    Open();
    EXPECT_FALSE(Find(At(1001)));
    EXPECT_FALSE(Find(MediaTime(std::numeric_limits<std::int64_t>::max())));
    EXPECT_EQ(m_script->reads, 0);
    EXPECT_THAT(m_finder->readSampleOps(), IsEmpty());
    EXPECT_THAT(m_finder->attempts(), IsEmpty());
    EXPECT_EQ(m_finder->StreamDuration(), 1000);
}

TEST_F(FastSampleFinder, AnUnknownDurationFindsNothing) {
    Open(Step, -1);
    EXPECT_FALSE(Find(At(0)));
    EXPECT_THAT(m_finder->readSampleOps(), IsEmpty());
}

// The duration itself is looked for, behind the last sample: as far as a search goes.
TEST_F(FastSampleFinder, TheDurationItselfEndsWithTheStream) {
    Open();
    EXPECT_FALSE(Find(At(1000)));
    EXPECT_EQ(m_script->reads, 500);
    EXPECT_THAT(m_finder->attempts(), ElementsAre(500));
    EXPECT_EQ(m_finder->readSampleOps().size(), 500U);
    EXPECT_THAT(m_finder->readSampleOps(), Each(ReadNext));
    EXPECT_EQ(m_finder->currentSample(), nullptr);
    EXPECT_EQ(TimeFoundAt(0), 0); // it serves on
}

TEST_F(FastSampleFinder, FiveHundredStepsAndNoFurther) {
    Use(Pictures(700, 100));
    Open();
    EXPECT_EQ(TimeFoundAt(60'000), 50'000);
    EXPECT_THAT(m_finder->attempts(), ElementsAre(500));
    EXPECT_EQ(m_finder->readSampleOps().back(), ReturnedCurrent);
    EXPECT_EQ(TimeFoundAt(60'000), 60'000); // from there it is 100 more
    EXPECT_THAT(m_finder->attempts(), ElementsAre(500, 100));
}

TEST_F(FastSampleFinder, TheFiveHundredthStepMayCoverTheTime) {
    Use(Pictures(700, 100));
    Open();
    EXPECT_EQ(TimeFoundAt(50'000), 50'000);
    EXPECT_THAT(m_finder->attempts(), ElementsAre(500));
}

TEST_F(FastSampleFinder, TicksAndFailedReadsAreStepsThatGotNowhere) {
    m_script->outcome = [](int read) {
        if (read % 3 == 0) {
            return ReadOutcome::Sample;
        }
        return read % 3 == 1 ? ReadOutcome::Tick : ReadOutcome::Failed;
    };
    Open();
    // Reads 0, 3, 6 give samples (the first was read before they were counted).
    EXPECT_EQ(TimeFoundAt(300), 300);
    EXPECT_EQ(m_script->reads, 7);
    EXPECT_THAT(m_finder->attempts(), ElementsAre(7));
    EXPECT_THAT(m_finder->readSampleFailures(), IsEmpty());
}

// What a read says beside its sample is not looked at.
TEST_F(FastSampleFinder, AnEndWithASampleIsReadOn) {
    m_script->outcome = [](int read) {
        return read < 3 ? ReadOutcome::EndWithSample : ReadOutcome::Sample;
    };
    Open();
    EXPECT_EQ(TimeFoundAt(100), 100);
    EXPECT_EQ(TimeFoundAt(500), 500);
    EXPECT_EQ(m_script->reads, 5);
}

TEST_F(FastSampleFinder, EndlessFailureEnds) {
    Open();
    m_script->outcome = [](int) { return ReadOutcome::Failed; };
    EXPECT_FALSE(Find(At(500)));
    EXPECT_EQ(m_script->reads, 500);
    EXPECT_THAT(m_finder->readSampleFailures(), IsEmpty());
}

TEST_F(FastSampleFinder, TheDecidersExceptionPassesThrough) {
    bool broken = true;
    Open([&](std::int64_t, std::int64_t) -> bool {
        if (broken) {
            throw std::runtime_error("Couldn't find key frame times");
        }
        return false;
    });
    EXPECT_EQ(TimeFoundAt(0), 0);
    EXPECT_THROW(Find(At(100)), std::runtime_error);
    EXPECT_EQ(TimeFoundAt(0), 0);
    broken = false;
    EXPECT_EQ(TimeFoundAt(100), 100);
}

TEST_F(FastSampleFinder, WithoutADecider) {
    m_reader = MakeScriptedReader(m_script);
    WinH264FastSampleFinder finder(m_reader.Get(), ReadFirst(m_reader.Get()), 1000, 1, nullptr, {});
    for (const auto& ask : {std::function<void()>([&] { finder.NeedToSeekBetweenTimes(0, 1); }),
                            std::function<void()>([&] { finder.findSampleAtTime(At(100)); })}) {
        try {
            ask();
            FAIL();
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "WinH264FastSampleFinder: No Seek-or-Step-Through Decider!");
        }
    }
}

TEST_F(FastSampleFinder, WithoutAFirstSample) {
    m_reader = MakeScriptedReader(m_script);
    try {
        WinH264FastSampleFinder(m_reader.Get(), nullptr, 1000, 1, nullptr, {});
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "WinH264FastSampleFinder: Received invalid firstSample");
    }
}

TEST_F(FastSampleFinder, AStreamThatIsNotThere) {
    m_script->nativeTypeResult = MF_E_INVALIDSTREAMNUMBER;
    try {
        Open();
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "WinH264FastSampleFinder: Invalid stream index");
    }
    EXPECT_EQ(*m_script->living, 0);
}

TEST_F(FastSampleFinder, AnotherFailureOfTheNativeTypeIsNone) {
    m_script->nativeTypeResult = E_FAIL;
    Open();
    EXPECT_EQ(TimeFoundAt(100), 100);
    EXPECT_EQ(m_finder->frameRateNumerator(), 30U);
    EXPECT_EQ(m_finder->frameRateDenominator(), 1U);
}

TEST_F(FastSampleFinder, TheFrameRateIsTheNativeTypes) {
    MFSetAttributeRatio(m_script->nativeType.Get(), MF_MT_FRAME_RATE, 24000, 1001);
    Open();
    EXPECT_EQ(m_finder->frameRateNumerator(), 24000U);
    EXPECT_EQ(m_finder->frameRateDenominator(), 1001U);
    m_script->nativeType = com::MakeOwned<ScriptedMediaType>();
    Open();
    EXPECT_EQ(m_finder->frameRateNumerator(), 0U);
    EXPECT_EQ(m_finder->frameRateDenominator(), 1U);
}

TEST_F(FastSampleFinder, TwoSamplesAreHeldAndNoMore) {
    Open();
    for (const std::int64_t time : {0, 100, 250, 900, 300, 301, 700, 100}) {
        TimeFoundAt(time);
        EXPECT_LE(*m_script->living, 2);
    }
    auto kept = Find(At(500));
    EXPECT_EQ(References(kept.Get()), 2U); // the finder's and the caller's
    m_finder.reset();
    EXPECT_EQ(References(kept.Get()), 1U);
    EXPECT_EQ(*m_script->living, 1);
    kept.Reset();
    EXPECT_EQ(*m_script->living, 0);
}

// A step leaves the sample found behind, also where it finds no other.
TEST_F(FastSampleFinder, AStepThatGotNowhereHoldsNothing) {
    Open();
    EXPECT_EQ(TimeFoundAt(0), 0);
    m_script->outcome = [](int) { return ReadOutcome::Tick; };
    EXPECT_FALSE(Find(At(100)));
    EXPECT_EQ(*m_script->living, 0);
}

// Both are held, as the search ended before it was over.
TEST_F(FastSampleFinder, OfTwoThatCoverATimeTheLaterReadAnswers) {
    Use({{0, 100, true}, {100, 200, true}, {200, 100, true}, {300, 100, true}});
    Open([](std::int64_t from, std::int64_t) -> bool {
        if (from == 200) {
            throw std::runtime_error("Couldn't find key frame times");
        }
        return false;
    });
    EXPECT_THROW(Find(At(350)), std::runtime_error);
    EXPECT_EQ(*m_script->living, 2);
    EXPECT_EQ(TimeFoundAt(250), 200);
    EXPECT_THAT(m_finder->readSampleOps(), ElementsAre(ReadNext, ReadNext, ReturnedCurrent));
}

TEST_F(FastSampleFinder, LogsAreBounded) {
    Open();
    for (int i = 0; i < 700; ++i) {
        TimeFoundAt(0);
    }
    EXPECT_EQ(m_finder->attempts().size(), 500U);
    EXPECT_EQ(m_finder->readSampleOps().size(), 500U);
}

TEST_F(FastSampleFinder, TheTimesOfTheLastFiveHundredSamplesAreKept) {
    Use(Pictures(700, 100));
    Open();
    TimeFoundAt(20'000);
    EXPECT_EQ(m_finder->sampleTimes().size(), 201U); // the first one included
    EXPECT_EQ(m_finder->sampleTimes().front(), 0);
    TimeFoundAt(60'000);
    EXPECT_EQ(m_finder->sampleTimes().size(), 500U);
    EXPECT_EQ(m_finder->sampleTimes().front(), 10'100);
    EXPECT_EQ(m_finder->sampleTimes().back(), 60'000);
}

// Numbers that a sum or a difference does not fit.
TEST_F(FastSampleFinder, TimesAtTheEndsOfTheNumbers) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    Use({{least, most, true}, {most, most, true}, {least, least, true}});
    Open(Step, most);
    EXPECT_EQ(TimeFoundAt(0), 0);
    EXPECT_FALSE(Find(MediaTime(most))); // the greatest time is nobody's
}

} // namespace
} // namespace Zanthe
