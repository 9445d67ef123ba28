#include "tools/zanthe/SheetLayout.h"

#include <gtest/gtest.h>

using Program::LayOutSheet;
using Program::Rect;
using Program::SheetLayout;
using Program::SheetTimes;
using Program::Size;

TEST(SheetLayout, ALandscapePictureGetsItsWidth) {
    const SheetLayout layout = LayOutSheet({1920, 1080}, 4, 3);
    ASSERT_EQ(layout.cells.size(), 12U);
    EXPECT_EQ(layout.title, (Rect{8, 8, 4 * 328 - 8, 28}));
    EXPECT_EQ(layout.cells[0].picture, (Rect{8, 44, 320, 180}));
    EXPECT_EQ(layout.cells[0].caption, (Rect{8, 224, 320, 20}));
    EXPECT_EQ(layout.cells[1].picture, (Rect{336, 44, 320, 180}));
    EXPECT_EQ(layout.cells[4].picture, (Rect{8, 252, 320, 180}));
    EXPECT_EQ(layout.sheet, (Size{4 * 328 + 8, 44 + 3 * 208}));
}

TEST(SheetLayout, APortraitPictureGetsItsHeight) {
    const SheetLayout layout = LayOutSheet({1080, 1920}, 2, 1);
    EXPECT_EQ(layout.cells[1].picture, (Rect{8 + 188, 44, 180, 320}));
}

TEST(SheetLayout, ASmallPictureIsNotEnlarged) {
    const SheetLayout layout = LayOutSheet({64, 48}, 1, 1);
    // In the middle of the narrowest cell.
    EXPECT_EQ(layout.cells[0].picture, (Rect{8 + 16, 44, 64, 48}));
    EXPECT_EQ(layout.cells[0].caption, (Rect{8, 92, 96, 20}));
}

TEST(SheetLayout, AnExtremeShapeKeepsAPixel) {
    EXPECT_EQ(LayOutSheet({16384, 1}, 1, 1).cells[0].picture.height, 1);
    EXPECT_EQ(LayOutSheet({1, 16384}, 1, 1).cells[0].picture.width, 1);
}

TEST(SheetLayout, TheStripStandsBelowTheCellsOverTheirWidth) {
    const SheetLayout without = LayOutSheet({1920, 1080}, 4, 3);
    EXPECT_EQ(without.strip.height, 0);
    const SheetLayout with = LayOutSheet({1920, 1080}, 4, 3, 60);
    EXPECT_EQ(with.cells[11].picture, without.cells[11].picture);
    EXPECT_EQ(with.strip, (Rect{8, without.sheet.height, 4 * 328 - 8, 60}));
    EXPECT_EQ(with.sheet.height, without.sheet.height + 68);
}

TEST(SheetTimes, StandInTheMiddleOfTheirShares) {
    EXPECT_EQ(SheetTimes(1000, 4), (std::vector<std::int64_t>{125, 375, 625, 875}));
    EXPECT_EQ(SheetTimes(1, 2), (std::vector<std::int64_t>{0, 0}));
}
