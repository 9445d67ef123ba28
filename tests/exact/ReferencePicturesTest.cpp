// What the exactness tests rest on: the made clips' pictures can be told apart, and the ffmpeg
// program's pictures are read with the right times.
#include <gtest/gtest.h>

#include "tests/support/ReferencePictures.h"
#include "tests/support/TestMedia.h"

using Zanthe::MediaTime;

namespace {

TEST(ReferencePictures, NumbersAndTimesOfAPlainClip) {
    const ReferencePictures reference(MadeMedia("h264/plain.mp4"));
    ASSERT_EQ(reference.Count(), 96U);
    ASSERT_TRUE(reference.HasTimes());
    for (std::size_t i = 0; i < reference.Count(); ++i) {
        EXPECT_EQ(reference.Time(i), MediaTime(static_cast<std::int64_t>(i), 24));
        EXPECT_EQ(NumberInPicture(reference.Pixels(i)), static_cast<int>(i));
    }
}

TEST(ReferencePictures, NeighboursDifferClearly) {
    const ReferencePictures reference(MadeMedia("h264/plain.mp4"));
    BgraPicture before = reference.Pixels(0);
    for (std::size_t i = 1; i < reference.Count(); ++i) {
        const BgraPicture& here = reference.Pixels(i);
        EXPECT_LT(Psnr(before, here), 25) << i;
        EXPECT_EQ(Psnr(here, here), 100);
        before = here;
    }
}

TEST(ReferencePictures, ThoseThatTheEditListHidesAreNotShown) {
    const ReferencePictures reference(MadeMedia("h264/edit-later.mp4"));
    ASSERT_EQ(reference.Count(), 94U);
    EXPECT_EQ(NumberInPicture(reference.Pixels(0)), 2);
}

TEST(ReferencePictures, EachHasASizeOfItsOwn) {
    const ReferencePictures reference(MadeMedia("h264/size-change.mp4"));
    ASSERT_EQ(reference.Count(), 96U);
    EXPECT_EQ(reference.Width(47), 192);
    EXPECT_EQ(reference.Width(48), 256);
    EXPECT_EQ(NumberInPicture(reference.Pixels(47)), 47);
    EXPECT_EQ(NumberInPicture(reference.Pixels(48)), 0);
}

TEST(ReferencePictures, DeepAndFullPixels) {
    for (const char* name : {"10-bit", "422", "odd-size-444", "10-bit-422.mov", "full-range"}) {
        const std::string file = std::string("h264/") + name;
        SCOPED_TRACE(file);
        const ReferencePictures reference(
            MadeMedia(file.find('.') == std::string::npos ? file + ".mp4" : file));
        ASSERT_TRUE(reference.HasPixels());
        EXPECT_EQ(NumberInPicture(reference.Pixels(70)), 70);
    }
}

TEST(ReferencePictures, AFileWithoutPicturesHasNone) {
    const TemporaryFolder folder;
    EXPECT_EQ(ReferencePictures(folder.Write("nothing.mp4", "no film")).Count(), 0U);
}

TEST(ReferencePictures, NoMoreThanAsked) {
    const ReferencePictures reference(MadeMedia("h264/plain.mp4"), 10);
    EXPECT_EQ(reference.Count(), 10U);
    EXPECT_TRUE(reference.Shortened());
}

} // namespace
