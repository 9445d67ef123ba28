#include "tools/zanthe/DisplayPicture.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/ScriptedReader.h"

using Program::Alpha;
using Program::AsShown;
using Program::AsStored;
using Program::DisplaySize;
using Program::LockedPixels;
using Program::Size;
using Program::VideoFacts;

namespace {

// Three by two, numbered 1 2 3 / 4 5 6 in their first bytes.
class Numbered : public RowSample {
public:
    Numbered();
};

Numbered::Numbered()
    : RowSample({.width = 3, .height = 2, .pitch = 16, .rows = 2}) {
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            bytes[static_cast<std::size_t>(y * 16 + x * 4)] =
                static_cast<unsigned char>(y * 3 + x + 1);
            bytes[static_cast<std::size_t>(y * 16 + x * 4 + 3)] = 7;
        }
    }
}

VideoFacts Facts(int rotation) {
    return {.width = 3, .height = 2, .rotation = rotation};
}

std::vector<int> FirstBytes(const Zanthe::Bitmap& bitmap) {
    std::vector<int> bytes;
    for (int i = 0; i < bitmap.GetWidth() * bitmap.GetHeight(); ++i) {
        bytes.push_back(bitmap.GetBits()[i * 4]);
    }
    return bytes;
}

} // namespace

TEST(DisplaySize, TurnsAndStretches) {
    EXPECT_EQ(DisplaySize({.width = 1920, .height = 1080}), (Size{1920, 1080}));
    EXPECT_EQ(DisplaySize({.width = 1920, .height = 1080, .rotation = 90}), (Size{1080, 1920}));
    EXPECT_EQ(DisplaySize({.width = 1920, .height = 1080, .rotation = 180}), (Size{1920, 1080}));
    EXPECT_EQ(
        DisplaySize({.width = 1440, .height = 1080, .aspectNumerator = 4, .aspectDenominator = 3}),
        (Size{1920, 1080}));
    EXPECT_EQ(
        DisplaySize({.width = 720, .height = 480, .aspectNumerator = 8, .aspectDenominator = 9}),
        (Size{720, 540}));
    EXPECT_EQ(DisplaySize({.width = 1440,
                           .height = 1080,
                           .rotation = 270,
                           .aspectNumerator = 4,
                           .aspectDenominator = 3}),
              (Size{1080, 1920}));
}

TEST(DisplaySize, AnAbsurdShapeStaysWithinBounds) {
    const std::int64_t huge = 2'000'000'000;
    EXPECT_EQ(
        DisplaySize({.width = 100, .height = 100, .aspectNumerator = huge, .aspectDenominator = 1}),
        (Size{100, 1}));
    EXPECT_EQ(
        DisplaySize({.width = 100, .height = 100, .aspectNumerator = 1, .aspectDenominator = huge}),
        (Size{1, 100}));
    EXPECT_EQ(
        DisplaySize({.width = 10, .height = 10, .aspectNumerator = 0, .aspectDenominator = 1}),
        (Size{10, 10}));
}

TEST(AsStored, CopiesWithoutPadding) {
    Numbered sample;
    const auto bitmap = AsStored(LockedPixels(sample), Facts(90));
    EXPECT_EQ(bitmap->GetWidth(), 3);
    EXPECT_EQ(FirstBytes(*bitmap), (std::vector<int>{1, 2, 3, 4, 5, 6}));
}

TEST(AsStored, TheFourthByteCountsOnlyWhereItIsAlpha) {
    Numbered sample;
    VideoFacts facts = Facts(0);
    EXPECT_EQ(AsStored(LockedPixels(sample), facts)->GetBits()[3], 255);
    facts.alpha = Alpha::Straight;
    EXPECT_EQ(AsStored(LockedPixels(sample), facts)->GetBits()[3], 7);
    EXPECT_FALSE(AsStored(LockedPixels(sample), facts)->GetPreMultipliedAlpha());
    facts.alpha = Alpha::Premultiplied;
    EXPECT_TRUE(AsStored(LockedPixels(sample), facts)->GetPreMultipliedAlpha());
}

TEST(AsShown, TurnsClockwise) {
    Numbered sample;
    const auto turned = [&](int rotation) {
        return FirstBytes(*AsShown(LockedPixels(sample), Facts(rotation)));
    };
    EXPECT_EQ(turned(0), (std::vector<int>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(turned(90), (std::vector<int>{4, 1, 5, 2, 6, 3}));
    EXPECT_EQ(turned(180), (std::vector<int>{6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(turned(270), (std::vector<int>{3, 6, 2, 5, 1, 4}));
    EXPECT_EQ(AsShown(LockedPixels(sample), Facts(90))->GetWidth(), 2);
}

TEST(AsShown, StretchesAndKeepsPlainColours) {
    RowSample sample({.width = 30, .height = 20, .pitch = 120, .rows = 20});
    std::fill(sample.bytes.begin(), sample.bytes.end(), 77);
    VideoFacts facts{.width = 30, .height = 20, .aspectNumerator = 4, .aspectDenominator = 3};
    facts.rotation = 90;
    const auto shown = AsShown(LockedPixels(sample), facts);
    EXPECT_EQ(shown->GetWidth(), 20);
    EXPECT_EQ(shown->GetHeight(), 40);
    for (const int byte : FirstBytes(*shown)) {
        EXPECT_EQ(byte, 77);
    }
}
