#include <filesystem>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/h264/HeadersAlone.h"
#include "tests/zanthe/h264/ScriptedOpening.h"
#include "zanthe/h264/H264KeyframeCollector_MF.h"
#include "zanthe/h264/H264KeyframeCollector_MP4V2.h"
#include "zanthe/h264/Mp4Track.h"
#include "zanthe/h264/WinH264DurationUtil.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace Zanthe {
namespace {

struct Collected {
    bool answer = false;
    std::vector<std::int64_t> times{1, 2, 3}; // to be dropped
    std::int64_t duration = 4;
};

template <typename Collector>
Collected Collect(const std::string& path, std::int64_t firstSampleTime = 0) {
    Collected collected;
    collected.answer = Collector().CollectKeyframeTimesAndDuration(
        path, firstSampleTime, collected.times, collected.duration);
    return collected;
}

void ExpectNothing(const Collected& collected) {
    EXPECT_FALSE(collected.answer);
    EXPECT_THAT(collected.times, IsEmpty());
    EXPECT_EQ(collected.duration, 0);
}

constexpr std::int64_t Second = 10'000'000;

TEST(KeyframeCollectorMp4, TimesAndDuration) {
    for (const char* name : {"h264/plain.mp4", "h264/fragmented.mp4", "h264/audio-first.mp4",
                             "h264/hevc-plain.mp4", "h264/mpeg4-plain.mp4"}) {
        const Collected collected = Collect<H264KeyframeCollector_MP4V2>(MadeMedia(name), 99);
        EXPECT_TRUE(collected.answer) << name;
        EXPECT_THAT(collected.times, ElementsAre(0, Second, 2 * Second, 3 * Second)) << name;
        EXPECT_EQ(collected.duration, 4 * Second) << name;
    }
}

TEST(KeyframeCollectorMp4, WhatHasNoVideo) {
    const TemporaryFolder folder;
    ExpectNothing(Collect<H264KeyframeCollector_MP4V2>(folder / "none.mp4"));
    ExpectNothing(Collect<H264KeyframeCollector_MP4V2>(folder.Write("text.mp4", "no boxes")));
    ExpectNothing(Collect<H264KeyframeCollector_MP4V2>(MadeMedia("mp4-audio-only.mp4")));
}

TEST(KeyframeCollectorMp4, WithoutSamplesThereIsNoEnd) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.mp4", WithoutSamples(4000));
    ASSERT_EQ(WinH264DurationUtil::GetRefTimeDuration(path), 4 * Second);
    ExpectNothing(Collect<H264KeyframeCollector_MP4V2>(path));
}

TEST(KeyframeCollectorMp4, WithoutKeyFramesTheEndIsToldAllTheSame) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("h264/plain.mp4"));
    const std::size_t table = bytes.find("stss");
    ASSERT_NE(table, std::string::npos);
    // One key frame is left, and it is none of the samples.
    bytes.replace(table + 8, 8, boxes::U32(1) + boxes::U32(1000));
    const Collected collected = Collect<H264KeyframeCollector_MP4V2>(folder.Write("a.mp4", bytes));
    EXPECT_FALSE(collected.answer);
    EXPECT_THAT(collected.times, IsEmpty());
    EXPECT_EQ(collected.duration, 4 * Second);
}

// Which of the two paths it takes out shows in the number of files that are open.
TEST(KeyframeCollectorMp4, ClosesTheFile) {
    const auto open = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    Collect<H264KeyframeCollector_MP4V2>(MadeMedia("h264/plain.mp4"));
    const auto before = open();
    Collect<H264KeyframeCollector_MP4V2>(MadeMedia("mp4-audio-only.mp4"));
    Collect<H264KeyframeCollector_MP4V2>(MadeMedia("h264/plain.mp4"));
    EXPECT_THROW(WinH264DurationUtil::GetRefTimeDuration(MadeMedia("mp4-audio-only.mp4")),
                 std::runtime_error);
    EXPECT_EQ(open(), before);
}

TEST(KeyframeCollectorMf, TimesAndDuration) {
    const Collected collected = Collect<H264KeyframeCollector_MF>(MadeMedia("h264/plain.mp4"));
    EXPECT_TRUE(collected.answer);
    EXPECT_THAT(collected.times, ElementsAre(0, Second, 2 * Second, 3 * Second));
    EXPECT_NEAR(static_cast<double>(collected.duration), 4.0 * Second, 0.1 * Second);
}

TEST(KeyframeCollectorMf, TimesCountFromTheFirstSample) {
    const auto script = MakeScript(Pictures(10, 100, 5000, 4));
    const ScriptedOpening opening(script);
    const Collected collected = Collect<H264KeyframeCollector_MF>("any", 5000);
    EXPECT_TRUE(collected.answer);
    EXPECT_THAT(collected.times, ElementsAre(0, 400, 800));
    EXPECT_EQ(collected.duration, 1000);
    EXPECT_EQ(script->subtypeSet, MFVideoFormat_H264);
    EXPECT_EQ(script->streamsRead[0], MF_SOURCE_READER_FIRST_VIDEO_STREAM);
    EXPECT_EQ(script->streamsRead[1], 1U); // as the read before told
}

TEST(KeyframeCollectorMf, OnlyTheFirstVideoStreamIsReadAndAsItIs) {
    const auto script = MakeScript(Pictures(3, 100));
    const ScriptedOpening opening(script);
    EXPECT_TRUE(Collect<H264KeyframeCollector_MF>("any").answer);
    EXPECT_EQ(script->streamTyped, MF_SOURCE_READER_FIRST_VIDEO_STREAM);
    EXPECT_EQ(script->typeSet.Get(), script->nativeType.Get());
    EXPECT_THAT(script->selections,
                ElementsAre(std::pair(MF_SOURCE_READER_ALL_STREAMS, false),
                            std::pair(MF_SOURCE_READER_FIRST_VIDEO_STREAM, true)));
}

TEST(KeyframeCollectorMf, AStreamThatIsNotToldIsTheFirstOne) {
    const auto script = MakeScript(Pictures(3, 100));
    script->indexIsTold = false;
    const ScriptedOpening opening(script);
    EXPECT_TRUE(Collect<H264KeyframeCollector_MF>("any").answer);
    EXPECT_THAT(script->streamsRead, testing::Each(MF_SOURCE_READER_FIRST_VIDEO_STREAM));
}

TEST(KeyframeCollectorMf, TheEndMayComeWithASample) {
    const auto script = MakeScript(Pictures(10, 100));
    script->outcome = [](int read) {
        return read == 4 ? ReadOutcome::EndWithSample : ReadOutcome::Sample;
    };
    const ScriptedOpening opening(script);
    const Collected collected = Collect<H264KeyframeCollector_MF>("any");
    EXPECT_TRUE(collected.answer);
    EXPECT_EQ(collected.times.size(), 5U);
    EXPECT_EQ(collected.duration, 500);
}

TEST(KeyframeCollectorMf, AFailedReadEndsIt) {
    const auto script = MakeScript(Pictures(10, 100));
    script->outcome = [](int read) {
        return read == 4 ? ReadOutcome::Failed : ReadOutcome::Sample;
    };
    const ScriptedOpening opening(script);
    const Collected collected = Collect<H264KeyframeCollector_MF>("any");
    EXPECT_FALSE(collected.answer);
    EXPECT_EQ(collected.times.size(), 4U);
    EXPECT_EQ(collected.duration, 0);
}

TEST(KeyframeCollectorMf, TicksWithoutEndEndIt) {
    const auto script = MakeScript(Pictures(10, 100));
    script->outcome = [](int read) { return read < 3 ? ReadOutcome::Sample : ReadOutcome::Tick; };
    const ScriptedOpening opening(script);
    EXPECT_FALSE(Collect<H264KeyframeCollector_MF>("any").answer);
    EXPECT_EQ(script->reads, 503);
}

TEST(KeyframeCollectorMf, WhatCannotBeOpened) {
    const TemporaryFolder folder;
    ExpectNothing(Collect<H264KeyframeCollector_MF>(folder / "none.mp4"));
    ExpectNothing(Collect<H264KeyframeCollector_MF>(MadeMedia("mp4-audio-only.mp4")));
    for (const auto result : {&SourceScript::nativeTypeResult, &SourceScript::setTypeResult,
                              &SourceScript::selectResult}) {
        const auto script = MakeScript(Pictures(3, 100));
        script.get()->*result = E_FAIL;
        const ScriptedOpening opening(script);
        ExpectNothing(Collect<H264KeyframeCollector_MF>("any"));
    }
}

TEST(KeyframeCollectorMf, DeselectingMayFail) {
    const auto script = MakeScript(Pictures(3, 100));
    script->deselectResult = E_FAIL;
    const ScriptedOpening opening(script);
    EXPECT_TRUE(Collect<H264KeyframeCollector_MF>("any").answer);
}

std::string DurationFailureOf(const std::string& path) {
    try {
        WinH264DurationUtil::GetRefTimeDuration(path);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing thrown";
}

TEST(WinH264DurationUtil, ByTheTracksHeaders) {
    EXPECT_EQ(WinH264DurationUtil::GetRefTimeDuration(MadeMedia("h264/plain.mp4")), 4 * Second);
    EXPECT_EQ(WinH264DurationUtil::GetRefTimeDuration(MadeMedia("h264/longer-sound.mp4")),
              4 * Second);
    EXPECT_EQ(WinH264DurationUtil::GetRefTimeDuration(MadeMedia("h264/fragmented.mp4")),
              4 * Second);
}

TEST(WinH264DurationUtil, Failures) {
    const TemporaryFolder folder;
    EXPECT_EQ(DurationFailureOf(folder / "none.mp4"), "WinH264DurationUtil: error opening file");
    EXPECT_EQ(DurationFailureOf(folder.Write("text.mp4", "no boxes")),
              "WinH264DurationUtil: error opening file");
    EXPECT_EQ(DurationFailureOf(MadeMedia("mp4-audio-only.mp4")),
              "WinH264DurationUtil: error finding video track");
}

TEST(ReferenceTimeOf, IsCut) {
    EXPECT_EQ(ReferenceTimeOf(1, 3), 3'333'333);
    EXPECT_EQ(ReferenceTimeOf(1001, 30000), 333'666);
    EXPECT_EQ(ReferenceTimeOf(41, 25), 16'399'999); // divided first
    EXPECT_EQ(ReferenceTimeOf(std::uint64_t{1} << 63, std::uint64_t{1} << 33), 10737418240000000);
}

TEST(ReferenceTimeOf, StaysWithinItsNumbers) {
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(ReferenceTimeOf(~std::uint64_t{0}, 1), most);
    EXPECT_EQ(ReferenceTimeOf(1, 0), most);
    EXPECT_EQ(ReferenceTimeOf(0, 0), 0);
}

} // namespace
} // namespace Zanthe
