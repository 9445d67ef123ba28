#include "tools/zanthe/VideoBench.h"

#include <gtest/gtest.h>

#include "tests/tools/ScriptedVideo.h"
#include "tools/zanthe/TimeText.h"

using Program::BenchKind;
using Program::BenchPlan;
using Program::BenchResult;
using Program::VideoBench;

namespace {

constexpr std::int64_t End = 33'366'666; // of a hundred pictures

// Keeps the times that each of its videos is asked for.
struct Recorder {
    std::vector<std::vector<std::int64_t>> asked = {};
    bool tellsTimes = true;

    std::unique_ptr<Program::IVideo> Open() {
        asked.emplace_back();
        auto video = std::make_unique<ScriptedVideo>(EvenStarts(100), End, tellsTimes);
        ScriptedVideo* raw = video.get();
        const std::size_t index = asked.size() - 1;
        video->script = [this, raw, index](std::size_t, const Zanthe::MediaTime& time) {
            asked[index].push_back(Program::WholeUnits(time));
            return raw->Honest(time);
        };
        return video;
    }
};

} // namespace

TEST(BenchResult, MedianAndPercentileAreByRank) {
    BenchResult result{.kind = BenchKind::Open};
    EXPECT_EQ(result.Median(), 0);
    EXPECT_EQ(result.Percentile95(), 0);
    result.milliseconds = {5};
    EXPECT_EQ(result.Median(), 5);
    EXPECT_EQ(result.Percentile95(), 5);
    for (int i = 100; i > 0; --i) {
        result.milliseconds.push_back(i);
    }
    result.milliseconds.erase(result.milliseconds.begin());
    EXPECT_EQ(result.Median(), 50);
    EXPECT_EQ(result.Percentile95(), 95);
}

TEST(VideoBench, AsksAsItSays) {
    Recorder recorder;
    VideoBench bench([&] { return recorder.Open(); },
                     {.openings = 2, .sequential = 10, .random = 7, .backward = 5, .scrubs = 13});
    const auto results = bench.Run();
    ASSERT_EQ(results.size(), 5U);
    const std::size_t counts[] = {2, 10, 7, 5, 13};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(static_cast<std::size_t>(results[i].kind), i);
        EXPECT_EQ(results[i].milliseconds.size(), counts[i]);
    }
    ASSERT_EQ(recorder.asked.size(), 6U) << "each kind has a video of its own";
    const auto starts = EvenStarts(100);
    EXPECT_EQ(recorder.asked[2], std::vector<std::int64_t>(starts.begin(), starts.begin() + 10));
}

TEST(VideoBench, BackwardIsPictureByPicture) {
    Recorder recorder;
    VideoBench bench([&] { return recorder.Open(); }, {.openings = 1, .backward = 20});
    bench.Run();
    const auto starts = EvenStarts(100);
    const ScriptedVideo video(starts, End);
    const auto& asked = recorder.asked[3];
    ASSERT_EQ(asked.size(), 20U);
    const std::size_t first = *video.IndexAt(asked[0]);
    for (std::size_t i = 0; i < asked.size(); ++i) {
        EXPECT_EQ(video.IndexAt(asked[i]), first - i);
    }
}

TEST(VideoBench, AShortVideoEndsTheSequence) {
    Recorder recorder;
    VideoBench bench([&] { return recorder.Open(); }, {.openings = 1, .sequential = 5000});
    EXPECT_EQ(bench.Run()[1].milliseconds.size(), 100U);
}

TEST(VideoBench, AVideoThatTellsNoTimesIsStepped) {
    Recorder recorder{.tellsTimes = false};
    VideoBench bench([&] { return recorder.Open(); }, {.openings = 1, .sequential = 3});
    const auto results = bench.Run();
    EXPECT_EQ(recorder.asked[1], (std::vector<std::int64_t>{0, 333'333, 666'666}));
    for (const BenchResult& result : results) {
        EXPECT_FALSE(result.milliseconds.empty());
    }
}

TEST(VideoBench, AVideoWithoutPicturesHasNoFigures) {
    VideoBench bench([] { return std::make_unique<ScriptedVideo>(std::vector<std::int64_t>{}, 0); },
                     {});
    for (const BenchResult& result : bench.Run()) {
        EXPECT_TRUE(result.milliseconds.empty());
    }
}
