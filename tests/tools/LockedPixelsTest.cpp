#include "tools/zanthe/LockedPixels.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/tools/ScriptedReader.h"
#include "tools/zanthe/PictureHash.h"

using Program::HashOf;
using Program::LockedPixels;

TEST(LockedPixels, AreTheTopLeftPartOfTheBuffer) {
    RowSample sample({.width = 4, .height = 3, .pitch = 32, .rows = 5});
    const LockedPixels pixels(sample);
    EXPECT_EQ(pixels.Width(), 4);
    EXPECT_EQ(pixels.Height(), 3);
    for (int y = 0; y < 3; ++y) {
        EXPECT_EQ(pixels.Row(y)[0], y);
    }
}

TEST(LockedPixels, AFlippedSampleIsReadFromItsEnd) {
    RowSample sample({.width = 4, .height = 3, .pitch = 16, .rows = 3, .flipped = true});
    const LockedPixels pixels(sample);
    for (int y = 0; y < 3; ++y) {
        EXPECT_EQ(pixels.Row(y)[0], 2 - y);
    }
}

TEST(LockedPixels, ANegativePitchFlipsToo) {
    RowSample sample({.width = 4, .height = 3, .pitch = -16, .rows = 3});
    EXPECT_EQ(LockedPixels(sample).Row(0)[0], 2);
}

TEST(LockedPixels, LocksAndUnlocks) {
    RowSample sample({.width = 4, .height = 3, .pitch = 16, .rows = 3});
    {
        const LockedPixels pixels(sample);
        EXPECT_EQ(sample.locks, 1);
    }
    EXPECT_EQ(sample.locks, 0);
}

TEST(LockedPixels, AShortBufferIsRefusedAndUnlocked) {
    for (const RowSample::Shape& shape :
         {RowSample::Shape{.width = 4, .height = 4, .pitch = 16, .rows = 3},
          RowSample::Shape{.width = 5, .height = 3, .pitch = 16, .rows = 30},
          RowSample::Shape{.width = 0, .height = 3, .pitch = 16, .rows = 3},
          RowSample::Shape{.width = 4, .height = -1, .pitch = 16, .rows = 3},
          RowSample::Shape{.width = 4, .height = 1, .pitch = 16, .rows = 0}}) {
        RowSample sample(shape);
        EXPECT_THROW(LockedPixels{sample}, std::runtime_error);
        EXPECT_EQ(sample.locks, 0);
    }
}

TEST(LockedPixels, TheLastRowNeedsNoPadding) {
    RowSample sample({.width = 4, .height = 3, .pitch = 20, .rows = 3});
    sample.bytes.resize(20 + 20 + 16);
    EXPECT_EQ(LockedPixels(sample).Row(2)[0], 2);
}

TEST(LockedPixels, APictureOnTheDeviceIsOutOfReach) {
    RowSample sample({.width = 4, .height = 3, .pitch = 16, .rows = 3});
    sample.format = Zanthe::VideoSampleFormat::GraphicsDevice;
    EXPECT_THROW(LockedPixels{sample}, std::runtime_error);
    EXPECT_EQ(sample.locks, 0);
}

TEST(PictureHash, IsOfThePictureAlone) {
    RowSample wide({.width = 4, .height = 3, .pitch = 32, .rows = 5});
    RowSample tight({.width = 4, .height = 3, .pitch = 16, .rows = 3});
    for (int y = 0; y < 3; ++y) {
        std::copy_n(tight.bytes.begin() + y * 16, 16, wide.bytes.begin() + y * 32);
    }
    EXPECT_EQ(HashOf(LockedPixels(wide)), HashOf(LockedPixels(tight)));
}

TEST(PictureHash, EveryByteMatters) {
    RowSample sample({.width = 19, .height = 3, .pitch = 76, .rows = 3});
    const std::uint64_t before = HashOf(LockedPixels(sample));
    for (std::size_t i = 0; i < sample.bytes.size(); ++i) {
        sample.bytes[i] ^= 0x80;
        EXPECT_NE(HashOf(LockedPixels(sample)), before) << i;
        sample.bytes[i] ^= 0x80;
    }
    EXPECT_EQ(HashOf(LockedPixels(sample)), before);
}

TEST(PictureHash, TheShapeMatters) {
    RowSample wide({.width = 4, .height = 2, .pitch = 16, .rows = 2});
    RowSample high({.width = 2, .height = 4, .pitch = 8, .rows = 4});
    std::fill(wide.bytes.begin(), wide.bytes.end(), 1);
    std::fill(high.bytes.begin(), high.bytes.end(), 1);
    EXPECT_NE(HashOf(LockedPixels(wide)), HashOf(LockedPixels(high)));
}
