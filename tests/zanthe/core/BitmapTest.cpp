#include "zanthe/core/Bitmap.h"

#include <algorithm>
#include <limits>
#include <new>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

using Zanthe::Bitmap;

namespace {

constexpr int MaxInt = std::numeric_limits<int>::max();

std::unique_ptr<unsigned char[]> Counting(int count) {
    auto bytes = std::make_unique<unsigned char[]>(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        bytes[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i + 1);
    }
    return bytes;
}

std::vector<int> BytesOf(const Bitmap& bitmap, int count) {
    return {bitmap.GetBits(), bitmap.GetBits() + count};
}

void FillCounting(const Bitmap& bitmap, int count) {
    for (int i = 0; i < count; ++i) {
        bitmap.GetBits()[i] = static_cast<unsigned char>(i + 1);
    }
}

TEST(Bitmap, IsPlain) {
    static_assert(!std::is_polymorphic_v<Bitmap>);
    static_assert(!std::is_copy_constructible_v<Bitmap>);
}

TEST(Bitmap, AllocatesItsOwnBits) {
    const Bitmap bitmap(3, 2, true);
    EXPECT_EQ(bitmap.GetWidth(), 3);
    EXPECT_EQ(bitmap.GetHeight(), 2);
    EXPECT_EQ(bitmap.GetStride(), 12);
    EXPECT_TRUE(bitmap.GetPreMultipliedAlpha());
    ASSERT_NE(bitmap.GetBits(), nullptr);
    FillCounting(bitmap, 24); // the sanitizer watches that all of it is ours
    EXPECT_EQ(bitmap.GetBits()[23], 24);
    EXPECT_EQ(bitmap.ColorSpace(), nullptr);
}

TEST(Bitmap, TakesBitsOver) {
    auto bits = Counting(24);
    unsigned char* const address = bits.get();
    const Bitmap bitmap(3, 2, false, std::move(bits));
    EXPECT_EQ(bitmap.GetBits(), address);
    EXPECT_EQ(bitmap.GetStride(), 12);
    EXPECT_FALSE(bitmap.GetPreMultipliedAlpha());
}

TEST(Bitmap, BorrowsBits) {
    const auto bits = Counting(24);
    {
        const Bitmap bitmap(3, 2, false, bits.get());
        EXPECT_EQ(bitmap.GetBits(), bits.get());
        EXPECT_EQ(bitmap.GetStride(), 12);
    }
    EXPECT_EQ(bits[23], 24); // still the lender's
}

TEST(Bitmap, ReleaseGivesUpAllocatedBits) {
    Bitmap bitmap(2, 2, false);
    unsigned char* const address = bitmap.GetBits();
    const auto released = bitmap.ReleaseBits();
    EXPECT_EQ(released.get(), address);
    EXPECT_EQ(bitmap.GetBits(), nullptr);
    EXPECT_EQ(bitmap.ReleaseBits(), nullptr);
}

TEST(Bitmap, ReleaseGivesUpBitsTakenOver) {
    Bitmap bitmap(2, 2, false, Counting(16));
    const auto released = bitmap.ReleaseBits();
    ASSERT_NE(released, nullptr);
    EXPECT_EQ(released[15], 16);
    EXPECT_EQ(bitmap.GetBits(), nullptr);
}

TEST(Bitmap, ReleaseKeepsBorrowedBits) {
    const auto bits = Counting(16);
    Bitmap bitmap(2, 2, false, bits.get());
    EXPECT_EQ(bitmap.ReleaseBits(), nullptr);
    EXPECT_EQ(bitmap.GetBits(), bits.get());
}

TEST(Bitmap, ColorSpaceStaysNull) {
    Bitmap bitmap(1, 1, false);
    int something = 0;
    bitmap.SetColorSpace(reinterpret_cast<Zanthe::CGColorSpace*>(&something));
    EXPECT_EQ(bitmap.ColorSpace(), nullptr);
}

TEST(Bitmap, SwapsEveryRowOfItsOwnBits) {
    Bitmap bitmap(2, 2, false);
    FillCounting(bitmap, 16);
    bitmap.SwapRGBA_BGRA();
    EXPECT_EQ(BytesOf(bitmap, 16),
              (std::vector<int>{3, 2, 1, 4, 7, 6, 5, 8, 11, 10, 9, 12, 15, 14, 13, 16}));
}

TEST(Bitmap, SwapsTheFirstRowOfAHandedInBufferOncePerRow) {
    Bitmap odd(2, 3, false, Counting(24));
    odd.SwapRGBA_BGRA();
    EXPECT_EQ(BytesOf(odd, 12), (std::vector<int>{3, 2, 1, 4, 7, 6, 5, 8, 9, 10, 11, 12}));

    const auto bits = Counting(16);
    Bitmap even(2, 2, false, bits.get());
    even.SwapRGBA_BGRA();
    EXPECT_EQ(BytesOf(even, 8), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Bitmap, SwapWithoutBitsDoesNothing) {
    Bitmap released(2, 2, false);
    released.ReleaseBits();
    released.SwapRGBA_BGRA();
    Bitmap empty(2, 2, false, nullptr);
    empty.SwapRGBA_BGRA();
    EXPECT_EQ(empty.GetBits(), nullptr);
}

TEST(Bitmap, ZeroesAllOfItsOwnBits) {
    Bitmap bitmap(3, 2, false);
    FillCounting(bitmap, 24);
    EXPECT_TRUE(bitmap.ZeroOutBits());
    EXPECT_EQ(BytesOf(bitmap, 24), std::vector<int>(24, 0));
}

TEST(Bitmap, ZeroesAQuarterOfAHandedInBuffer) {
    const auto bits = Counting(24);
    Bitmap borrowed(3, 2, false, bits.get());
    EXPECT_TRUE(borrowed.ZeroOutBits());
    EXPECT_EQ(BytesOf(borrowed, 8), (std::vector<int>{0, 0, 0, 0, 0, 0, 7, 8}));

    Bitmap taken(3, 2, false, Counting(24));
    EXPECT_TRUE(taken.ZeroOutBits());
    EXPECT_EQ(BytesOf(taken, 8), (std::vector<int>{0, 0, 0, 0, 0, 0, 7, 8}));
}

TEST(Bitmap, ZeroesNothingWithoutPixelsOrBits) {
    EXPECT_FALSE(Bitmap(0, 0, false).ZeroOutBits());
    EXPECT_FALSE(Bitmap(5, 0, false).ZeroOutBits());
    EXPECT_FALSE(Bitmap(0, 5, false).ZeroOutBits());
    EXPECT_FALSE(Bitmap(2, 2, false, nullptr).ZeroOutBits());
    Bitmap released(2, 2, false);
    released.ReleaseBits();
    EXPECT_FALSE(released.ZeroOutBits());
}

TEST(Bitmap, ZeroesNothingOfNegativeSizes) {
    const auto bits = Counting(16);
    EXPECT_FALSE(Bitmap(2, -2, false, bits.get()).ZeroOutBits());
    EXPECT_FALSE(Bitmap(-2, 2, false, bits.get()).ZeroOutBits());
    EXPECT_EQ(bits[0], 1);
}

TEST(Bitmap, AnEmptyOneHasSizes) {
    const Bitmap bitmap(7, 0, false);
    EXPECT_EQ(bitmap.GetWidth(), 7);
    EXPECT_EQ(bitmap.GetHeight(), 0);
    EXPECT_EQ(bitmap.GetStride(), 28);
}

// Sizes come out of files: the product must neither wrap around nor be taken for a small one.
TEST(Bitmap, SizesThatCannotBeAllocatedThrow) {
    const struct {
        int width;
        int height;
    } cases[] = {{-1, 1},
                 {1, -1},
                 {-1, -1},
                 {-3, 0},
                 {65536, 65536},
                 {MaxInt, MaxInt},
                 {MaxInt / 4 + 1, 1},
                 {MaxInt / 4 + 1, 0},
                 {23171, 23171}};

    for (const auto& size : cases) {
        EXPECT_THROW(Bitmap(size.width, size.height, false), std::bad_array_new_length)
            << size.width << " x " << size.height;
    }
}

TEST(Bitmap, AStrideThatAnIntCannotTellIsZero) {
    EXPECT_EQ(Bitmap(MaxInt / 4, 1, false, nullptr).GetStride(), MaxInt / 4 * 4);
    EXPECT_EQ(Bitmap(MaxInt / 4 + 1, 1, false, nullptr).GetStride(), 0);
    EXPECT_EQ(Bitmap(std::numeric_limits<int>::min(), 1, false, nullptr).GetStride(), 0);
}

} // namespace
