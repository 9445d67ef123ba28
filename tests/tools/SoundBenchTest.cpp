#include "tools/zanthe/SoundBench.h"

#include <algorithm>
#include <vector>

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include "tests/tools/ScriptedSound.h"

using Program::BenchKind;
using Program::BenchResult;
using Program::SoundBench;
using Program::SoundBenchPlan;

namespace {

constexpr int Rate = 1000;

// Keeps what each of its readers was asked.
struct Recorder {
    std::int64_t frames = 20'500;
    std::vector<boost::shared_ptr<ScriptedSound>> readers = {};

    SoundBench::Opening Open() {
        return [this] {
            readers.push_back(boost::make_shared<ScriptedSound>(frames));
            return readers.back();
        };
    }

    // The spans of a second, without the search for the end.
    std::vector<std::int64_t> Starts(std::size_t reader) const {
        std::vector<std::int64_t> starts;
        for (const auto& read : readers.at(reader)->reads) {
            if (read.count == Rate) {
                starts.push_back(read.start);
            }
        }
        return starts;
    }
};

SoundBenchPlan Plan() {
    return {.rate = Rate, .openings = 2, .sequential = 5, .random = 6, .backward = 4, .seed = 3};
}

} // namespace

TEST(SoundBench, EachKindHasAReaderOfItsOwn) {
    Recorder recorder;
    const auto results = SoundBench(recorder.Open(), Plan()).Run();
    ASSERT_EQ(results.size(), 4U);
    EXPECT_EQ(recorder.readers.size(), 2U + 3U);
    EXPECT_EQ(results[0].kind, BenchKind::Open);
    EXPECT_EQ(results[0].milliseconds.size(), 2U);
    EXPECT_EQ(results[1].milliseconds.size(), 5U);
    EXPECT_EQ(results[2].milliseconds.size(), 6U);
    EXPECT_EQ(results[3].milliseconds.size(), 4U);
    EXPECT_EQ(recorder.readers[0]->reads.front(), (ScriptedSound::Read{0, 100}));
    EXPECT_EQ(recorder.Starts(2), (std::vector<std::int64_t>{0, 1000, 2000, 3000, 4000}));
    EXPECT_EQ(recorder.Starts(4), (std::vector<std::int64_t>{15375, 14375, 13375, 12375}));
    for (const std::int64_t start : recorder.Starts(3)) {
        EXPECT_LT(start, 20'500);
    }
}

TEST(SoundBench, TheSeedDecidesWhereItReads) {
    Recorder first;
    Recorder second;
    Recorder other;
    SoundBench(first.Open(), Plan()).Run();
    SoundBench(second.Open(), Plan()).Run();
    SoundBenchPlan plan = Plan();
    plan.seed = 4;
    SoundBench(other.Open(), plan).Run();
    EXPECT_EQ(first.Starts(3), second.Starts(3));
    EXPECT_NE(first.Starts(3), other.Starts(3));
}

TEST(SoundBench, AShortSoundHasFewReadings) {
    Recorder recorder;
    recorder.frames = 1500;
    const auto results = SoundBench(recorder.Open(), Plan()).Run();
    EXPECT_EQ(results[1].milliseconds.size(), 2U);
    EXPECT_EQ(results[3].milliseconds.size(), 2U);
}

TEST(SoundBench, WithoutSoundThereAreNone) {
    Recorder recorder;
    recorder.frames = 0;
    for (const BenchResult& result : SoundBench(recorder.Open(), Plan()).Run()) {
        EXPECT_TRUE(result.milliseconds.empty());
    }
}
