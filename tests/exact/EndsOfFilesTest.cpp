// Before the first picture, at the last one, behind it, and back again.
#include <gtest/gtest.h>

#include "tests/exact/PictureCheck.h"
#include "tests/support/TestMedia.h"

using Zanthe::MediaTime;

namespace {

int NumberAt(PictureAsker& asker, MediaTime time) {
    const auto picture = asker.At(time);
    return picture ? NumberInPicture(*picture) : -1;
}

TEST(StartOfAFile, TimesBeforeItAreItsFirstPicture) {
    for (const char* name : {"h264/plain.mp4", "h264/edit-none.mp4", "h264/edit-empty-start.mp4",
                             "h264/fragmented-late.mp4", "h264/edit-later.mp4"}) {
        SCOPED_TRACE(name);
        const ReferencePictures reference(MadeMedia(name));
        PictureAsker asker(MadeMedia(name));
        ASSERT_TRUE(asker);
        EXPECT_TRUE(IsPicture(asker.At(MediaTime(-3)), reference, 0));
        EXPECT_TRUE(IsPicture(asker.At(reference.Time(30)), reference, 30));
        EXPECT_TRUE(IsPicture(asker.At(MediaTime(-1, 1000)), reference, 0));
        EXPECT_TRUE(IsPicture(asker.At(MediaTime(0)), reference, 0));
    }
}

TEST(EndOfAFile, NothingIsShownBehindIt) {
    for (const char* name :
         {"h264/plain.mp4", "h264/open-groups.mp4", "h264/fragmented.mp4", "h264/vfr-speeds.mp4",
          "h264/edit-into-group.mp4", "h264/hevc-open-groups.mp4", "h264/mpeg4-bframes.mov"}) {
        SCOPED_TRACE(name);
        const ReferencePictures reference(MadeMedia(name));
        const std::size_t last = reference.Count() - 1;
        PictureAsker asker(MadeMedia(name));
        ASSERT_TRUE(asker);
        EXPECT_FALSE(asker.At(reference.Time(last) + MediaTime(5)));
        EXPECT_TRUE(IsPicture(asker.At(reference.Time(last)), reference, last));
        EXPECT_FALSE(asker.At(MediaTime(1000000)));
        EXPECT_TRUE(IsPicture(asker.At(reference.Time(last - 1)), reference, last - 1));
        EXPECT_TRUE(IsPicture(asker.At(reference.Time(2)), reference, 2));
        EXPECT_TRUE(IsPicture(asker.At(reference.Time(last)), reference, last));
    }
}

// Just before the last picture's end it is shown; where it ends, it or nothing, but never another.
TEST(EndOfAFile, TheLastPictureLastsAsLongAsTheOthers) {
    PictureAsker asker(MadeMedia("h264/plain.mp4"));
    ASSERT_TRUE(asker);
    EXPECT_EQ(NumberAt(asker, MediaTime(4) - MediaTime(1, 1000)), 95);
    const auto atTheEnd = asker.At(MediaTime(4));
    EXPECT_TRUE(!atTheEnd || NumberInPicture(*atTheEnd) == 95);
    EXPECT_EQ(NumberAt(asker, MediaTime(2)), 48);
}

// The film is longer than its pictures: behind them is the last one or none.
TEST(EndOfAFile, WhereSoundGoesOn) {
    for (const char* name : {"h264/longer-sound.mp4", "h264/longer-sound.mov"}) {
        SCOPED_TRACE(name);
        PictureAsker asker(MadeMedia(name));
        ASSERT_TRUE(asker);
        EXPECT_EQ(NumberAt(asker, MediaTime(95, 24)), 95);
        for (const int second : {5, 6, 4}) {
            const auto behind = asker.At(MediaTime(second));
            EXPECT_TRUE(!behind || NumberInPicture(*behind) == 95) << second;
            EXPECT_EQ(NumberAt(asker, MediaTime(second, 24)), second);
        }
    }
}

// The index names 96 pictures, and some 57 are there.
TEST(EndOfAFile, PicturesThatArePromisedAndMissing) {
    const std::string path = MadeMedia("h264/cut-off.mp4");
    const ReferencePictures reference(path);
    const int last = static_cast<int>(reference.Count()) - 1;
    ASSERT_LT(last, 90);
    PictureAsker asker(path);
    ASSERT_TRUE(asker);
    for (const int number : {90, last + 3, 95}) {
        const auto missing = asker.At(MediaTime(number, 24));
        EXPECT_TRUE(!missing || NumberInPicture(*missing) == last) << number;
        EXPECT_EQ(NumberAt(asker, MediaTime(20, 24)), 20);
    }
}

TEST(APauseInAFile, ShowsThePictureBeforeIt) {
    PictureAsker asker(MadeMedia("h264/vfr-long-pause.mov"));
    ASSERT_TRUE(asker);
    for (const int second : {4, 6, 2, 5, 3}) {
        EXPECT_EQ(NumberAt(asker, MediaTime(second)), 39) << second;
    }
    EXPECT_EQ(NumberAt(asker, MediaTime(40, 24) + MediaTime(5)), 40);
    EXPECT_EQ(NumberAt(asker, MediaTime(38, 24)), 38);
}

} // namespace
