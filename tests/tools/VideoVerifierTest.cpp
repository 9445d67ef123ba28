#include "tools/zanthe/VideoVerifier.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/tools/ScriptedVideo.h"
#include "tools/zanthe/TimeText.h"

using Program::Picture;
using Program::VideoDifference;
using Program::VideoReadKind;
using Program::VideoVerification;
using Program::VideoVerifier;

namespace {

constexpr std::int64_t End = 33'366'666; // of a hundred pictures at 1001/30000 s

VideoVerification Verify(ScriptedVideo& video, std::int64_t seeks = 100) {
    return VideoVerifier(video, {.seeks = seeks, .seed = 7}).Run();
}

// Bends the first read of `kind` behind `skip` others of it.
void Bend(ScriptedVideo& video, VideoReadKind kind, std::int64_t skip,
          std::function<std::optional<Picture>(const Zanthe::MediaTime& time)> bent,
          VideoVerification& found) {
    bool now = false;
    video.script = [&](std::size_t, const Zanthe::MediaTime& time) {
        return std::exchange(now, false) ? bent(time) : video.Honest(time);
    };
    found = VideoVerifier(video, {.seeks = 100, .seed = 7}, [&](const auto& read) {
                now = read.kind == kind && read.index == skip;
            }).Run();
}

} // namespace

TEST(VideoVerifier, AnHonestVideoIsEqualInEveryOrder) {
    ScriptedVideo video(EvenStarts(100), End);
    const VideoVerification found = Verify(video);
    EXPECT_TRUE(found.Equal()) << Program::FractionText(found.first->read.time);
    EXPECT_EQ(found.pictures, 100);
    EXPECT_EQ(found.duration, End - 1);
    const std::int64_t reads[] = {101, 100, 100, 144, 396, 8};
    for (std::size_t kind = 0; kind < Program::VideoReadKinds; ++kind) {
        EXPECT_EQ(found.tallies[kind].reads, reads[kind]) << kind;
        EXPECT_EQ(found.tallies[kind].differences, 0) << kind;
    }
}

TEST(VideoVerifier, AnHonestVideoThatTellsNoTimesIsEqualToo) {
    ScriptedVideo video(EvenStarts(100), End, false);
    const VideoVerification found = Verify(video);
    EXPECT_TRUE(found.Equal());
    EXPECT_EQ(found.pictures, 100);
}

TEST(VideoVerifier, PicturesThatLookAlikeAreEqualStill) {
    ScriptedVideo video(EvenStarts(100), End);
    video.script = [&](std::size_t, const Zanthe::MediaTime& time) {
        auto picture = video.Honest(time);
        if (picture) {
            picture->sample = PlainSample(16, 8, 1);
        }
        return picture;
    };
    EXPECT_TRUE(Verify(video).Equal());
}

TEST(VideoVerifier, NothingIsExpectedBehindTheDurationThatIsTold) {
    for (const std::int64_t before : {2, 1000, 200'000, 333'664, 333'665, 333'666}) {
        ScriptedVideo video(EvenStarts(100), End);
        video.facts.duration = End - before;
        const VideoVerification found = Verify(video);
        EXPECT_TRUE(found.Equal())
            << before << ": " << Program::FractionText(found.first->read.time);
        EXPECT_EQ(found.pictures, 100);
        EXPECT_EQ(found.duration, End - 1) << "is the last picture's own end";
    }
}

TEST(VideoVerifier, FindsAPictureBehindTheDurationThatIsTold) {
    ScriptedVideo video(EvenStarts(100), End);
    video.facts.duration = End - 200'000;
    // As a reader does that goes by its last picture.
    video.script = [&](std::size_t, const Zanthe::MediaTime& time) {
        const bool behind = Program::UnitsLookedFor(time) > End - 200'000;
        return behind ? std::optional(video.PictureOf(99)) : video.Honest(time);
    };
    const VideoVerification found = Verify(video);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, VideoDifference::What::Extra);
    EXPECT_EQ(found.first->read.kind, VideoReadKind::BehindEnd);
}

TEST(VideoVerifier, FindsAMissingPictureAtTheDurationThatIsTold) {
    ScriptedVideo video(EvenStarts(100), End);
    video.facts.duration = EvenStarts(100)[99];
    // As a reader does that takes its duration for the first time without a picture.
    video.script = [&](std::size_t index, const Zanthe::MediaTime& time) {
        const bool refused = index > 100 && Program::UnitsLookedFor(time) == *video.facts.duration;
        return refused ? std::nullopt : video.Honest(time);
    };
    const VideoVerification found = Verify(video);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, VideoDifference::What::Missing);
}

TEST(VideoVerifier, FindsAnotherPicture) {
    ScriptedVideo video(EvenStarts(100), End);
    VideoVerification found;
    const auto bent = [&](const Zanthe::MediaTime& time) {
        auto picture = video.Honest(time);
        picture->sample = PlainSample(16, 8, 42 + 1);
        return picture;
    };
    Bend(video, VideoReadKind::Random, 17, bent, found);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.Differences(), 1);
    EXPECT_EQ(found.first->what, VideoDifference::What::Picture);
    EXPECT_EQ(found.first->read.kind, VideoReadKind::Random);
    EXPECT_EQ(found.first->read.index, 17);
    EXPECT_EQ(found.first->answeredPicture, 42U);
}

TEST(VideoVerifier, FindsASinglePixel) {
    ScriptedVideo video(EvenStarts(100), End);
    VideoVerification found;
    const auto bent = [&](const Zanthe::MediaTime& time) {
        auto picture = video.Honest(time);
        picture->sample->data()[picture->sample->bytesPerRow() * 7 + 15 * 4] ^= 1;
        return picture;
    };
    Bend(video, VideoReadKind::Backward, 99, bent, found);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, VideoDifference::What::Picture);
    EXPECT_EQ(found.first->picture, 0U);
    EXPECT_FALSE(found.first->answeredPicture);
}

TEST(VideoVerifier, WhatLiesBesideThePictureDoesNotMatter) {
    ScriptedVideo video(EvenStarts(100), End);
    video.script = [&](std::size_t index, const Zanthe::MediaTime& time) {
        auto picture = video.Honest(time);
        if (picture) {
            picture->sample->data()[64] = static_cast<unsigned char>(index);
        }
        return picture;
    };
    EXPECT_TRUE(Verify(video).Equal());
}

TEST(VideoVerifier, FindsAnotherTime) {
    ScriptedVideo video(EvenStarts(100), End);
    VideoVerification found;
    const auto bent = [&](const Zanthe::MediaTime& time) {
        auto picture = video.Honest(time);
        *picture->start += 1;
        return picture;
    };
    Bend(video, VideoReadKind::ToAndFro, 5, bent, found);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, VideoDifference::What::Time);
    EXPECT_EQ(found.first->answeredStart, found.first->expectedStart + 1);
}

TEST(VideoVerifier, FindsTheNeighbourAtABoundary) {
    ScriptedVideo video(EvenStarts(100), End);
    // As a reader does that forgets the unit in front of a start.
    video.script = [&](std::size_t, const Zanthe::MediaTime& time) {
        const auto units = Program::UnitsLookedFor(time);
        const auto index = video.IndexAt(units);
        if (index && *index > 0 && units == video.starts[*index] - 1) {
            return std::optional(video.PictureOf(*index - 1));
        }
        return video.Honest(time);
    };
    const VideoVerification found = Verify(video, 0);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->read.kind, VideoReadKind::Boundaries);
    EXPECT_GE(found.tallies[static_cast<std::size_t>(VideoReadKind::Boundaries)].differences, 5)
        << "of 99: some are seen a unit short";
}

TEST(VideoVerifier, FindsAMissingPicture) {
    ScriptedVideo video(EvenStarts(100), End);
    VideoVerification found;
    Bend(
        video, VideoReadKind::Backward, 10, [](const auto&) { return std::nullopt; }, found);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, VideoDifference::What::Missing);
    EXPECT_EQ(found.first->picture, 89U);
}

TEST(VideoVerifier, FindsAPictureBehindTheEnd) {
    ScriptedVideo video(EvenStarts(100), End);
    VideoVerification found;
    Bend(
        video, VideoReadKind::BehindEnd, 3, [&](const auto&) { return video.PictureOf(99); },
        found);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, VideoDifference::What::Extra);
}

TEST(VideoVerifier, FindsAFailure) {
    ScriptedVideo video(EvenStarts(100), End);
    VideoVerification found;
    const auto bent = [](const auto&) -> std::optional<Picture> {
        throw std::runtime_error("Couldn't find key frame times");
    };
    Bend(video, VideoReadKind::Random, 0, bent, found);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, VideoDifference::What::Failure);
    EXPECT_EQ(found.first->failure, "Couldn't find key frame times");
}

TEST(VideoVerifier, AFailureOfTheLinearReadingPassesThrough) {
    ScriptedVideo video(EvenStarts(100), End);
    video.script = [&](std::size_t index, const auto& time) {
        if (index == 50) {
            throw std::runtime_error("broken");
        }
        return video.Honest(time);
    };
    EXPECT_THROW(Verify(video), std::runtime_error);
}

TEST(VideoVerifier, AGapIsADifference) {
    ScriptedVideo video({0, 1000, 2000}, 3000);
    video.script = [&](std::size_t, const Zanthe::MediaTime& time) {
        auto picture = video.Honest(time + Zanthe::MediaTime(499, 10'000'000));
        if (picture && picture->start == 0) {
            picture->duration = 500;
        }
        return picture;
    };
    const VideoVerification found = Verify(video, 0);
    ASSERT_FALSE(found.Equal());
    EXPECT_EQ(found.first->what, VideoDifference::What::Gap);
}

TEST(VideoVerifier, TheSameSeedAsksTheSame) {
    ScriptedVideo one(EvenStarts(100), End);
    ScriptedVideo two(EvenStarts(100), End);
    Verify(one);
    Verify(two);
    EXPECT_EQ(one.reads, two.reads);
}

TEST(VideoVerifier, ALongVideoIsReadBackwardInParts) {
    ScriptedVideo video(EvenStarts(5000), 1'668'333'333);
    const VideoVerification found = Verify(video, 0);
    EXPECT_TRUE(found.Equal());
    EXPECT_EQ(found.tallies[static_cast<std::size_t>(VideoReadKind::Backward)].reads, 2000);
}

TEST(VideoVerifier, AVideoWithoutPicturesIsReadOnce) {
    ScriptedVideo video({}, 0);
    const VideoVerification found = Verify(video);
    EXPECT_TRUE(found.Equal());
    EXPECT_EQ(found.Reads(), 1);
}
