// What becomes of a collection for which memory runs out.
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "platform/mf/MediaFormats.h"
#include "tests/zanthe/h264/LimitedMemory.h"
#include "tests/zanthe/h264/ScriptedCollector.h"
#include "zanthe/h264/KeyFrameCache.h"
#include "zanthe/h264/KeyFrameCollectingSeekOrStepThroughDecider.h"

namespace Zanthe {
namespace {

using Decider = KeyFrameCollectingSeekOrStepThroughDecider;

// Key frames at each of the first `count` times.
KeyFrameTable TableOf(std::int64_t count) {
    KeyFrameTable table;
    for (std::int64_t time = 0; time < count; ++time) {
        table.keyFrameTimes.push_back(time);
    }
    table.duration = 2 * count;
    return table;
}

class KeyFrameMemory : public testing::TestWithParam<std::int64_t> {};

TEST_P(KeyFrameMemory, ATableThatCannotBeKeptServesItsDeciderAlone) {
    const std::string path = FreshPath();
    {
        const Decider decider(path, 0, 0, MFVideoFormat_H264,
                              std::make_unique<ScriptedCollector>(MakeCollection(
                                  TableOf(GetParam()), [] { SetLargestPiece(40); })));
        EXPECT_FALSE(decider.NeedToSeekBetweenTimes(0, 1));
        EXPECT_TRUE(decider.NeedToSeekBetweenTimes(0, 3));
        EXPECT_TRUE(decider.CollectionSucceeded());
    }
    EXPECT_FALSE(KeyFrameCache::OfProcess().IsInCollection(path));
    const Decider next(path, 0, 0, MFVideoFormat_H264,
                       std::make_unique<ScriptedCollector>(MakeCollection({{0}, 100})));
    EXPECT_FALSE(next.NeedToSeekBetweenTimes(0, 50)); // collected anew
}

// A large table finds no memory itself; with a small one it is the entry that keeps it.
INSTANTIATE_TEST_SUITE_P(Sizes, KeyFrameMemory, testing::Values(10'000, 4));

} // namespace
} // namespace Zanthe
