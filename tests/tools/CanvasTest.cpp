#include "tools/zanthe/Canvas.h"

#include <array>
#include <stdexcept>

#include <gtest/gtest.h>

using Program::BitmapPtr;
using Program::Canvas;
using Program::Colour;
using Program::Rect;

namespace {

using Pixel = std::array<int, 4>; // blue, green, red, alpha

constexpr Colour Black{0, 0, 0};
constexpr Colour White{1, 1, 1};

Pixel PixelAt(const Zanthe::Bitmap& bitmap, int x, int y) {
    const unsigned char* pixel = bitmap.GetBits() + y * bitmap.GetStride() + x * 4;
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

// How many pixels within `area` are brighter than half.
int BrightPixels(const Zanthe::Bitmap& bitmap, const Rect& area) {
    int count = 0;
    for (int y = area.y; y < area.y + area.height; ++y) {
        for (int x = area.x; x < area.x + area.width; ++x) {
            count += PixelAt(bitmap, x, y)[1] > 127 ? 1 : 0;
        }
    }
    return count;
}

BitmapPtr Plain(int width, int height, const Pixel& pixel, bool preMultiplied) {
    auto bitmap = std::make_unique<Zanthe::Bitmap>(width, height, preMultiplied);
    for (int i = 0; i < width * height * 4; ++i) {
        bitmap->GetBits()[i] = static_cast<unsigned char>(pixel[static_cast<std::size_t>(i % 4)]);
    }
    return bitmap;
}

} // namespace

TEST(Canvas, FillsAreas) {
    Canvas canvas({10, 6}, Black);
    canvas.FillArea({2, 1, 3, 2}, {1, 0.5, 0});
    const BitmapPtr bitmap = canvas.ToBitmap();
    EXPECT_EQ(PixelAt(*bitmap, 2, 1), (Pixel{0, 128, 255, 255}));
    EXPECT_EQ(PixelAt(*bitmap, 4, 2), (Pixel{0, 128, 255, 255}));
    EXPECT_EQ(PixelAt(*bitmap, 5, 2), (Pixel{0, 0, 0, 255}));
}

TEST(Canvas, APictureFillsItsPlaceToTheEdges) {
    Canvas canvas({20, 20}, Black);
    canvas.DrawPicture(*Plain(7, 5, {10, 20, 30, 255}, false), {3, 4, 11, 9});
    const BitmapPtr bitmap = canvas.ToBitmap();
    for (const auto& [x, y] : {std::pair(3, 4), std::pair(13, 12), std::pair(3, 12)}) {
        EXPECT_EQ(PixelAt(*bitmap, x, y), (Pixel{10, 20, 30, 255})) << x << ' ' << y;
    }
    EXPECT_EQ(PixelAt(*bitmap, 2, 4), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(PixelAt(*bitmap, 14, 12), (Pixel{0, 0, 0, 255}));
}

TEST(Canvas, StraightAlphaIsMultipliedAndPremultipliedIsNot) {
    for (const bool preMultiplied : {false, true}) {
        Canvas canvas({4, 4}, Black);
        canvas.DrawPicture(*Plain(4, 4, {100, 100, 100, 128}, preMultiplied), {0, 0, 4, 4});
        EXPECT_EQ(PixelAt(*canvas.ToBitmap(), 1, 1)[0], preMultiplied ? 100 : 50);
    }
}

TEST(Canvas, TextIsReallyDrawn) {
    Canvas canvas({200, 40}, Black);
    canvas.DrawText("0:00:01.000", {0, 0, 200, 40}, Canvas::Align::Left, 16, White);
    const BitmapPtr bitmap = canvas.ToBitmap();
    EXPECT_GT(BrightPixels(*bitmap, {0, 0, 100, 40}), 100);
    EXPECT_EQ(BrightPixels(*bitmap, {150, 0, 50, 40}), 0);
}

TEST(Canvas, OtherTextLooksOtherwise) {
    const auto drawn = [](const std::string& text) {
        Canvas canvas({60, 20}, Black);
        canvas.DrawText(text, {0, 0, 60, 20}, Canvas::Align::Left, 14, White);
        return BrightPixels(*canvas.ToBitmap(), {0, 0, 60, 20});
    };
    // Where no font is found every letter is the same box.
    EXPECT_NE(drawn("111"), drawn("888"));
}

TEST(Canvas, TextStaysInItsArea) {
    Canvas canvas({100, 20}, Black);
    canvas.DrawText(std::string(100, 'W'), {10, 0, 30, 20}, Canvas::Align::Left, 14, White);
    const BitmapPtr bitmap = canvas.ToBitmap();
    EXPECT_GT(BrightPixels(*bitmap, {10, 0, 30, 20}), 0);
    EXPECT_EQ(BrightPixels(*bitmap, {0, 0, 10, 20}), 0);
    EXPECT_EQ(BrightPixels(*bitmap, {40, 0, 60, 20}), 0);
}

TEST(Canvas, TextCanStandAtTheRight) {
    Canvas canvas({200, 20}, Black);
    canvas.DrawText("00", {0, 0, 200, 20}, Canvas::Align::Right, 14, White);
    const BitmapPtr bitmap = canvas.ToBitmap();
    EXPECT_EQ(BrightPixels(*bitmap, {0, 0, 150, 20}), 0);
    EXPECT_GT(BrightPixels(*bitmap, {150, 0, 50, 20}), 0);
}

TEST(Canvas, WhatCannotBeDrawnIsSaid) {
    EXPECT_THROW(Canvas({40000, 10}), std::runtime_error);
    Canvas canvas({10, 10}, Black);
    EXPECT_THROW(canvas.DrawText("\xFF", {0, 0, 10, 10}, Canvas::Align::Left, 14, White),
                 std::runtime_error);
}

TEST(Scaled, KeepsColoursAndAveragesWhatItShrinks) {
    auto stripes = std::make_unique<Zanthe::Bitmap>(64, 64, false);
    for (int i = 0; i < 64 * 64; ++i) {
        const unsigned char value = i % 2 == 0 ? 0 : 255;
        for (int channel = 0; channel < 4; ++channel) {
            stripes->GetBits()[i * 4 + channel] = channel == 3 ? 255 : value;
        }
    }
    const BitmapPtr small = Program::Scaled(*stripes, {16, 16});
    EXPECT_NEAR(PixelAt(*small, 8, 8)[0], 127, 12) << "without a filter it were black or white";
}
