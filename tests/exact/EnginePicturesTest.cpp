// Every picture of every made clip and of real ones, in all containers, from the engine itself.
#include <gtest/gtest.h>

#include "tests/exact/EngineAsker.h"
#include "tests/exact/Files.h"
#include "tests/exact/PictureCheck.h"

namespace {

constexpr unsigned int Seed = 4711;

class EngineClip : public testing::TestWithParam<std::string> {};

TEST_P(EngineClip, ShowsEachPictureAtItsTime) {
    const std::string path = MadeMedia("h264/" + GetParam());
    const ReferencePictures reference(path);
    ASSERT_GT(reference.Count(), 0U);
    ASSERT_TRUE(reference.HasTimes() && reference.HasPixels());
    EngineAsker asker(path);
    ASSERT_TRUE(asker);
    ExpectAnswers(asker, reference, QuestionsAbout(reference, 400, Seed));
}

INSTANTIATE_TEST_SUITE_P(All, EngineClip, testing::ValuesIn(MadeClips(Containers::All)),
                         NameOfClip);

} // namespace
