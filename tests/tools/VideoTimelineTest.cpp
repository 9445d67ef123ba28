#include "tools/zanthe/VideoTimeline.h"

#include <gtest/gtest.h>

#include "tests/tools/ScriptedVideo.h"
#include "tools/zanthe/TimeText.h"

using Program::FindEnd;
using Program::ReadTimeline;
using Program::VideoTimeline;

TEST(VideoTimeline, APictureCoversTheUnitBeforeItsStart) {
    ScriptedVideo video({0, 1000, 3000}, 4000);
    const VideoTimeline timeline = ReadTimeline(video);
    ASSERT_EQ(timeline.pictures.size(), 3U);
    EXPECT_EQ(timeline.PictureAt(0), 0U);
    EXPECT_EQ(timeline.PictureAt(998), 0U);
    EXPECT_EQ(timeline.PictureAt(999), 1U);
    EXPECT_EQ(timeline.PictureAt(1000), 1U);
    EXPECT_EQ(timeline.PictureAt(2999), 2U);
    EXPECT_EQ(timeline.PictureAt(3998), 2U);
    EXPECT_EQ(timeline.PictureAt(3999), std::nullopt);
    EXPECT_EQ(timeline.PictureAt(-1), std::nullopt);
    EXPECT_FALSE(timeline.gapBehind);
    EXPECT_FALSE(timeline.wentBackFrom);
}

TEST(VideoTimeline, OneReadAPictureAndOneBehindTheLast) {
    ScriptedVideo video(EvenStarts(100), 33'366'666);
    EXPECT_EQ(ReadTimeline(video).pictures.size(), 100U);
    EXPECT_EQ(video.reads.size(), 101U);
}

TEST(VideoTimeline, TheLastPictureGivenAgainIsTheEnd) {
    ScriptedVideo video({0, 1000}, 2000);
    video.script = [&](std::size_t, const Zanthe::MediaTime& time) {
        auto honest = video.Honest(time);
        return honest ? std::move(honest) : std::optional(video.PictureOf(1));
    };
    EXPECT_EQ(ReadTimeline(video).pictures.size(), 2U);
}

TEST(VideoTimeline, AGapIsFound) {
    ScriptedVideo video({0, 1000, 2000}, 3000);
    video.script = [&](std::size_t, const Zanthe::MediaTime& time) {
        auto picture = video.Honest(time);
        if (picture && picture->start == 0) {
            picture->duration = 500;
        }
        return picture;
    };
    // 501 gives picture 0 again: that is what readers do at the end, and so the reading ends there.
    EXPECT_EQ(ReadTimeline(video).pictures.size(), 1U);
    video.script = [&](std::size_t, const Zanthe::MediaTime& time) {
        auto picture = video.Honest(time + Zanthe::MediaTime(499, 10'000'000));
        if (picture && picture->start == 0) {
            picture->duration = 500;
        }
        return picture;
    };
    EXPECT_EQ(ReadTimeline(video).gapBehind, 0U);
}

TEST(VideoTimeline, APictureBeforeTheOneBeforeEndsTheReading) {
    ScriptedVideo video({0, 1000, 2000, 3000}, 4000);
    video.script = [&](std::size_t index, const Zanthe::MediaTime& time) {
        return index == 2 ? video.PictureOf(0) : video.Honest(time);
    };
    const VideoTimeline timeline = ReadTimeline(video);
    EXPECT_EQ(timeline.wentBackFrom, 1U);
    EXPECT_EQ(timeline.pictures.size(), 2U);
}

TEST(VideoTimeline, WithoutTimesPicturesAreToldApartByWhatTheyShow) {
    ScriptedVideo video({0, 1'000'000, 1'250'000}, 2'000'000, false);
    const VideoTimeline timeline = ReadTimeline(video);
    ASSERT_EQ(timeline.pictures.size(), 3U);
    EXPECT_EQ(timeline.PictureAt(900'000), 0U);
    EXPECT_EQ(timeline.PictureAt(1'000'000), 1U);
    EXPECT_EQ(timeline.PictureAt(1'200'000), 1U);
    EXPECT_EQ(timeline.PictureAt(1'300'000), 2U);
    EXPECT_EQ(timeline.PictureAt(1'250'000), std::nullopt) << "was not looked at";
    EXPECT_EQ(timeline.end, 2'000'000);
    EXPECT_FALSE(timeline.standsStill);
}

TEST(VideoTimeline, AVideoThatStandsStillEnds) {
    ScriptedVideo video({0, 1'000'000}, 1'000'000'000'000'000, false);
    const VideoTimeline timeline = ReadTimeline(video);
    EXPECT_EQ(timeline.pictures.size(), 2U);
    EXPECT_TRUE(timeline.standsStill);
    EXPECT_LT(video.reads.size(), 1100U);
}

TEST(VideoTimeline, AVideoWithoutPicturesIsEmpty) {
    for (const bool tellsTimes : {false, true}) {
        ScriptedVideo video({}, 0, tellsTimes);
        EXPECT_TRUE(ReadTimeline(video).pictures.empty());
        EXPECT_EQ(FindEnd(video), 0);
    }
}

TEST(FindEnd, ComesWithinAStepAndWithFewReads) {
    ScriptedVideo video(EvenStarts(3000), 1'001'000'000, false);
    const std::int64_t end = FindEnd(video);
    EXPECT_GE(end, 1'001'000'000);
    EXPECT_LT(end, 1'001'000'000 + VideoTimeline::Step);
    EXPECT_LT(video.reads.size(), 40U);
}

TEST(FindEnd, OfAVideoThatStandsStillIsItsLastChange) {
    ScriptedVideo video({0, 20'000'000}, 9'000'000'000'000'000'000, false);
    EXPECT_EQ(FindEnd(video), 20'000'000 + VideoTimeline::Step);
}
