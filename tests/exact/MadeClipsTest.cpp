// Every picture of every made clip, asked for in shuffled order.
#include <algorithm>
#include <cctype>

#include <gtest/gtest.h>

#include "tests/exact/PictureCheck.h"
#include "tests/support/TestMedia.h"

using Zanthe::MediaTime;

namespace {

constexpr unsigned int Seed = 20241107;
constexpr std::size_t AllQuestions = 400;

// Those of the clips that go to the H.264 reader by their names; tests/media/README.md tells what
// is special about each.
const char* const Clips[] = {
    // order and groups
    "plain.mp4", "bframes-3.mp4", "b-pyramid.mp4", "no-bframes.mp4", "long-group.mp4",
    "short-groups.mp4", "intra-only.mp4", "open-groups.mp4", "open-groups.mov", "intra-refresh.mp4",
    "two-slices.mp4", "one-picture.mp4", "three-pictures.mp4",
    // time
    "vfr-gaps.mp4", "vfr-speeds.mp4", "vfr-jitter.mp4", "vfr-long-pause.mov", "rate-29.97.mp4",
    "coarse-clock.mp4", "same-time.mp4", "same-time-bframes.mp4",
    // shapes
    "odd-size-444.mp4", "odd-height-422.mp4", "cropped.mp4", "wide-pixels.mp4", "tall-pixels.mov",
    "422.mp4", "10-bit.mp4", "10-bit-422.mov", "gray.mp4", "mbaff.mp4", "fake-interlaced.mp4",
    "large.mp4", "hd.mp4", "rotated-90.mp4", "rotated-180.mp4", "rotated-270.mp4", "mirrored.mp4",
    "rotated-and-mirrored.mp4", "other-display-size.mp4",
    // colour
    "bt709.mp4", "bt601.mp4", "smpte240m.mp4", "full-range.mp4", "full-range-only.mp4",
    "no-colour-words.mp4",
    // layout and tracks
    "index-first.mp4", "fragmented.mp4", "fragmented-finely.mp4", "fragmented-late.mp4",
    "audio-first.mp4", "longer-sound.mp4", "longer-sound.mov", "text-track.mov", "text-track.mp4",
    "cover.mp4", "two-videos.mp4",
    // edit lists
    "edit-into-group.mp4", "edit-into-group.mov", "edit-into-long-group.mp4",
    "edit-into-open-group.mp4", "edit-into-hevc.mp4", "edit-into-mpeg4.mp4", "edit-empty-start.mp4",
    "edit-empty-start.mov", "edit-later.mp4", "edit-none.mp4",
    // other codecs
    "hevc-plain.mp4", "hevc-open-groups.mp4", "hevc-hev1.mp4", "hevc-10-bit.mp4",
    "hevc-long-group.mov", "mpeg4-plain.mp4", "mpeg4-bframes.mp4", "mpeg4-bframes.mov",
    "mpeg4-odd-size.mp4", "mpeg4-long-group.mp4",
    // less than is promised
    "cut-off.mp4", "cut-off-fragmented.mp4"};

std::string NameOf(const testing::TestParamInfo<const char*>& info) {
    std::string name = info.param;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}

class MadeClip : public testing::TestWithParam<const char*> {
protected:
    const std::string m_path = MadeMedia(std::string("h264/") + GetParam());
};

TEST_P(MadeClip, ShowsEachPictureAtItsTime) {
    const ReferencePictures reference(m_path);
    ASSERT_GT(reference.Count(), 0U);
    ASSERT_TRUE(reference.HasTimes() && reference.HasPixels());
    PictureAsker asker(m_path);
    ASSERT_TRUE(asker);
    EXPECT_EQ(asker.Reader().outputWidth(), reference.Width(0));
    EXPECT_EQ(asker.Reader().outputHeight(), reference.Height(0));
    ExpectAnswers(asker, reference, QuestionsAbout(reference, AllQuestions, Seed));
}

TEST_P(MadeClip, ForwardThenBackwardThenToAndFro) {
    const ReferencePictures reference(m_path);
    ASSERT_GT(reference.Count(), 0U);
    std::vector<Question> questions;
    const auto ask = [&](std::size_t number) {
        questions.push_back({reference.Time(number), number});
    };
    for (std::size_t i = 0; i < reference.Count(); ++i) {
        ask(i);
    }
    for (std::size_t i = reference.Count(); i-- > 0;) {
        ask(i);
    }
    for (std::size_t i = 0; i < reference.Count(); i += 5) {
        ask(i);
        ask(reference.Count() - 1 - i);
    }
    PictureAsker asker(m_path);
    ASSERT_TRUE(asker);
    ExpectAnswers(asker, reference, questions);
}

INSTANTIATE_TEST_SUITE_P(All, MadeClip, testing::ValuesIn(Clips), NameOf);

// The band on top survives any scaling, so it tells the picture also where its size is not the
// reader's.
TEST(ClipThatChangesSize, ShowsTheRightPicturesAllTheSame) {
    PictureAsker asker(MadeMedia("h264/size-change.mp4"));
    ASSERT_TRUE(asker);
    for (const int number : {10, 47, 48, 49, 80, 95, 48, 47, 3}) {
        const auto picture = asker.At(MediaTime(number, 24));
        ASSERT_TRUE(picture) << number;
        EXPECT_EQ(NumberInPicture(*picture), number < 48 ? number : number - 48) << number;
    }
}

TEST(ClipAskedWithoutPause, TheSameTimeTwiceIsTheSamePicture) {
    PictureAsker asker(MadeMedia("h264/open-groups.mp4"));
    ASSERT_TRUE(asker);
    for (const int number : {50, 3, 95, 12, 11}) {
        const auto first = asker.At(MediaTime(number, 24));
        const auto second = asker.At(MediaTime(number, 24));
        ASSERT_TRUE(first && second) << number;
        EXPECT_EQ(first->bits, second->bits) << number;
    }
}

TEST(ClipWithItsSamplesKept, TheyShowTheirOwnPicturesAfterTheReaderIsGone) {
    std::vector<std::unique_ptr<Zanthe::VideoSample>> samples;
    {
        PictureAsker asker(MadeMedia("h264/plain.mp4"));
        ASSERT_TRUE(asker);
        for (int number = 0; number < 96; number += 7) {
            samples.emplace_back(asker.Reader().readVideoSample(
                MediaTime(number, 24), {}, Zanthe::VideoSampleReaderFlags::None));
        }
    }
    int number = 0;
    for (const auto& sample : samples) {
        ASSERT_TRUE(sample);
        EXPECT_EQ(NumberInPicture(PixelsOf(*sample)), number);
        number += 7;
    }
}

} // namespace
