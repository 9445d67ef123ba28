#include "zanthe/h264/KeyFrameCollectingSeekOrStepThroughDecider.h"

#include <atomic>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/mf/MediaFormats.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/h264/ScriptedCollector.h"

namespace Zanthe {
namespace {

using Decider = KeyFrameCollectingSeekOrStepThroughDecider;

class KeyFrameDecider : public testing::Test {
protected:
    std::unique_ptr<Decider> Make(KeyFrameTable table, const std::string& path = FreshPath(),
                                  GUID subtype = MFVideoFormat_H264) {
        return MakeWith(MakeCollection(std::move(table), [this] { ++m_runs; }), path, subtype);
    }

    static std::unique_ptr<Decider> MakeWith(const std::shared_ptr<Collection>& collection,
                                             const std::string& path = FreshPath(),
                                             GUID subtype = MFVideoFormat_H264) {
        return std::make_unique<Decider>(path, 0, 7, subtype,
                                         std::make_unique<ScriptedCollector>(collection));
    }

    std::atomic<int> m_runs = 0;
};

// What is asked throws as it does without a table.
void ExpectNoTimes(const Decider& decider, std::int64_t from, std::int64_t to) {
    try {
        decider.NeedToSeekBetweenTimes(from, to);
        ADD_FAILURE() << from << " to " << to;
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Couldn't find key frame times");
    }
}

TEST_F(KeyFrameDecider, WhatIsNotLaterIsSought) {
    const auto decider = Make({{0, 100, 200}, 300});
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(50, 50));
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(50, 49));
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(5000, 4000)); // also beyond the end
}

TEST_F(KeyFrameDecider, TheSameAndTheNextIntervalAreStepped) {
    // Mean distance: 260 / 3 = 86.
    const auto decider = Make({{0, 100, 200, 210}, 260});
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(0, 99));
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(0, 100));
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(50, 150));
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(0, 199));
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(50, 200));
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(50, 250));
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(0, 260));
}

// Two intervals further is near, where the mean distance is longer still.
TEST_F(KeyFrameDecider, AHopShorterThanTheMeanDistanceIsStepped) {
    const auto decider = Make({{0, 100, 200}, 500}); // 250
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(50, 150));
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(0, 250)); // that far is no more shorter
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(50, 250));
    // Beyond the end, too: such a hop asks for no key frame.
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(450, 650));
}

TEST_F(KeyFrameDecider, OneKeyFrame) {
    const auto decider = Make({{0}, 1000});
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(0, 1));
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(0, 1000));
    ExpectNoTimes(*decider, 0, 1001);
}

TEST_F(KeyFrameDecider, AheadOfTheFirstKeyFrameIsItsInterval) {
    const auto decider = Make({{100, 200, 300}, 310}); // 155
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(0, 199));
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(0, 250));
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(0, 300));
}

TEST_F(KeyFrameDecider, BeyondTheEndThereAreNoTimes) {
    const auto decider = Make({{0, 100, 200}, 250});
    ExpectNoTimes(*decider, 0, 251);
    ExpectNoTimes(*decider, 260, 500);
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(200, 251));
}

TEST_F(KeyFrameDecider, WithoutATableThereAreNoTimes) {
    const auto decider = Make({{}, 0, false});
    ExpectNoTimes(*decider, 0, 1);
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(1, 0));
    EXPECT_FALSE(decider->CollectionSucceeded());
    ExpectNoTimes(*Make({{}, 1000, true}), 0, 1); // a duration alone is no help
}

TEST_F(KeyFrameDecider, TimesAtTheEndsOfTheNumbers) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    const auto decider = Make({{0, 100, 200}, most});
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(least, most));
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(most, least));
}

TEST_F(KeyFrameDecider, ALaterDeciderCollectsNothing) {
    const std::string path = FreshPath();
    {
        const auto first = Make({{0, 100, 200, 210}, 260}, path);
        EXPECT_TRUE(first->NeedToSeekBetweenTimes(0, 200));
        EXPECT_TRUE(first->CollectionSucceeded());
    }
    const auto second = Make({{}, 0, false}, path);
    EXPECT_EQ(m_runs, 1);
    EXPECT_TRUE(second->NeedToSeekBetweenTimes(0, 200));
    EXPECT_FALSE(second->NeedToSeekBetweenTimes(0, 85));
    EXPECT_FALSE(second->CollectionSucceeded());
}

TEST_F(KeyFrameDecider, AFailedCollectionIsKeptToo) {
    const std::string path = FreshPath();
    Make({{}, 0, false}, path).reset();
    const auto second = Make({{0, 100}, 200}, path);
    EXPECT_EQ(m_runs, 1);
    ExpectNoTimes(*second, 0, 150);
}

TEST_F(KeyFrameDecider, ACollectorThatThrowsHasFailed) {
    const auto decider = MakeWith(MakeCollection({{0, 100}, 200}, [] { throw std::bad_alloc(); }));
    ExpectNoTimes(*decider, 0, 150);
    EXPECT_FALSE(decider->CollectionSucceeded());
}

TEST_F(KeyFrameDecider, ElementaryStreamsHaveNoTable) {
    for (const GUID& subtype : {MFVideoFormat_H264_ES, MFVideoFormat_HEVC_ES}) {
        const std::string path = FreshPath();
        const auto decider = Make({{0, 100}, 200}, path, subtype);
        ExpectNoTimes(*decider, 0, 1);
        // Nor has anybody else of that path from now on.
        ExpectNoTimes(*Make({{0, 100}, 200}, path), 0, 1);
    }
    EXPECT_EQ(m_runs, 0);
}

TEST_F(KeyFrameDecider, AnElementaryStreamHasTheTableOfItsPath) {
    const std::string path = FreshPath();
    Make({{0, 100, 200, 210}, 260}, path).reset();
    const auto decider = Make({{}, 0, false}, path, MFVideoFormat_H264_ES);
    EXPECT_TRUE(decider->NeedToSeekBetweenTimes(0, 200));
    EXPECT_FALSE(decider->NeedToSeekBetweenTimes(0, 150));
}

TEST_F(KeyFrameDecider, TheCollectorIsToldTheFileAndItsStart) {
    const std::string path = FreshPath();
    const auto collection = MakeCollection({{0}, 100});
    MakeWith(collection, path).reset();
    EXPECT_EQ(collection->path, path);
    EXPECT_EQ(collection->firstSampleTime, 7);
}

TEST_F(KeyFrameDecider, ReadsMp4FilesByItself) {
    const Decider decider(MadeMedia("h264/short-groups.mp4"), 0, 0, MFVideoFormat_H264);
    constexpr std::int64_t group = 10'000'000 / 6; // 4 of 24 a second
    EXPECT_FALSE(decider.NeedToSeekBetweenTimes(0, group * 3 / 2));
    EXPECT_TRUE(decider.NeedToSeekBetweenTimes(0, group * 5 / 2));
    EXPECT_TRUE(decider.CollectionSucceeded());
    ExpectNoTimes(decider, 0, 40'000'001);
}

TEST_F(KeyFrameDecider, AFileThatIsNoMp4HasNoTable) {
    const TemporaryFolder folder;
    const Decider decider(folder.Write("text.mp4", "no boxes"), 0, 0, MFVideoFormat_H264);
    ExpectNoTimes(decider, 0, 1);
    EXPECT_FALSE(decider.CollectionSucceeded());
}

} // namespace
} // namespace Zanthe
