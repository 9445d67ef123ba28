// Every picture of every made clip, asked for in shuffled order.
#include <gtest/gtest.h>

#include "tests/exact/Files.h"
#include "tests/exact/PictureCheck.h"

using Zanthe::MediaTime;

namespace {

constexpr unsigned int Seed = 20241107;
constexpr std::size_t AllQuestions = 400;

class MadeClip : public testing::TestWithParam<std::string> {
protected:
    const std::string m_path = MadeMedia("h264/" + GetParam());
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

INSTANTIATE_TEST_SUITE_P(All, MadeClip, testing::ValuesIn(MadeClips(Containers::OfTheReader)),
                         NameOfClip);

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
