#include "zanthe/analysis/FitSizeToBounds.h"

#include <limits>
#include <random>
#include <utility>

#include <gtest/gtest.h>

namespace {

constexpr int Largest = std::numeric_limits<int>::max();
constexpr int Smallest = std::numeric_limits<int>::min();

using Size = std::pair<int, int>;

Size Fit(int width, int height, int maxWidth, int maxHeight) {
    FitSizeToBounds(width, height, maxWidth, maxHeight);
    return {width, height};
}

TEST(FitSizeToBounds, OneBound) {
    EXPECT_EQ(Fit(1920, 1080, 0, 720), Size(1280, 720));
    EXPECT_EQ(Fit(1920, 1080, 1280, 0), Size(1280, 720));
}

TEST(FitSizeToBounds, NeverEnlarges) {
    EXPECT_EQ(Fit(100, 100, 200, 200), Size(100, 100));
    EXPECT_EQ(Fit(100, 100, 100, 100), Size(100, 100));
    EXPECT_EQ(Fit(100, 50, 0, 60), Size(100, 50));
    EXPECT_EQ(Fit(50, 100, 60, 0), Size(50, 100));
}

TEST(FitSizeToBounds, NoBoundAndNegativeBounds) {
    EXPECT_EQ(Fit(100, 100, 0, 0), Size(100, 100));
    EXPECT_EQ(Fit(100, 100, -1, 50), Size(100, 100));
    EXPECT_EQ(Fit(100, 100, 50, -1), Size(100, 100));
    EXPECT_EQ(Fit(100, 100, -1, -1), Size(100, 100));
}

TEST(FitSizeToBounds, TheLongerSideLimits) {
    EXPECT_EQ(Fit(4000, 3000, 1000, 1000), Size(1000, 750));
    EXPECT_EQ(Fit(3000, 4000, 1000, 1000), Size(750, 1000));
    EXPECT_EQ(Fit(5000, 3000, 4096, 4096), Size(4096, 2458));
    EXPECT_EQ(Fit(200, 100, 100, 50), Size(100, 50));
    EXPECT_EQ(Fit(150, 90, 200, 30), Size(50, 30));
}

TEST(FitSizeToBounds, NoSideVanishes) {
    EXPECT_EQ(Fit(10000, 1, 100, 100), Size(100, 1));
    EXPECT_EQ(Fit(1, 10000, 100, 100), Size(1, 100));
    EXPECT_EQ(Fit(1, 10000, 0, 100), Size(1, 100));
    EXPECT_EQ(Fit(10000, 1, 100, 0), Size(100, 1));
}

// 2/3 of 4 is 2.67: one bound cuts it, two bounds round it. With 2.5 the tie goes up.
TEST(FitSizeToBounds, OneBoundTruncatesAndTwoRound) {
    EXPECT_EQ(Fit(4, 3, 0, 2), Size(2, 2));
    EXPECT_EQ(Fit(4, 3, 100, 2), Size(3, 2));
    EXPECT_EQ(Fit(3, 4, 2, 0), Size(2, 2));
    EXPECT_EQ(Fit(3, 4, 2, 100), Size(2, 3));
    EXPECT_EQ(Fit(5, 4, 100, 2), Size(3, 2));
}

// A width of 2^24 + 1 has no float, so the quotient differs from the exact one now and then.
TEST(FitSizeToBounds, OneBoundIsReckonedInSinglePrecision) {
    int differing = 0;
    for (int height = 2; height < 2000; ++height) {
        const float single =
            static_cast<float>(16777217) / static_cast<float>(height) * static_cast<float>(1);
        const double exact = 16777217.0 / height;
        EXPECT_EQ(Fit(16777217, height, 0, 1).first, static_cast<int>(single)) << height;
        differing += static_cast<int>(single) != static_cast<int>(exact) ? 1 : 0;
    }
    EXPECT_GT(differing, 0);
}

// Half of 100 is 50, but 100 / 740 has no float, and 370 times the one beside it falls short of 50.
TEST(FitSizeToBounds, OneBoundDividesBeforeItMultiplies) {
    EXPECT_EQ(Fit(100, 740, 0, 370), Size(49, 370));
    EXPECT_EQ(Fit(740, 100, 370, 0), Size(370, 49));
    EXPECT_EQ(Fit(120, 760, 0, 380), Size(59, 380));
}

TEST(FitSizeToBounds, ProductsBeyond32Bits) {
    EXPECT_EQ(Fit(100000, 50000, 60000, 60000), Size(60000, 30000));
    EXPECT_EQ(Fit(Largest, Largest, Largest - 1, Largest - 1), Size(Largest - 1, Largest - 1));
}

TEST(FitSizeToBounds, SinglePrecisionBeyondAnInt) {
    EXPECT_EQ(Fit(Largest, Largest, 0, Largest - 1), Size(Largest, Largest - 1));
    EXPECT_EQ(Fit(Largest, Largest, Largest - 1, 0), Size(Largest - 1, Largest));
}

TEST(FitSizeToBounds, SizesThatAreNone) {
    EXPECT_EQ(Fit(0, 200, 100, 100), Size(1, 100));
    EXPECT_EQ(Fit(200, 0, 100, 100), Size(100, 1));
    EXPECT_EQ(Fit(-5, 200, 100, 100), Size(1, 100));
    EXPECT_EQ(Fit(0, 200, 0, 100), Size(1, 100));
    EXPECT_EQ(Fit(Smallest, Largest, 0, 1), Size(1, 1));
    EXPECT_EQ(Fit(Smallest, Smallest, 1, 1), Size(Smallest, Smallest));
}

TEST(FitSizeToBounds, AnyNumbersGiveASizeWithinPositiveBounds) {
    const unsigned int seed = 7;
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> any(Smallest, Largest);
    for (int round = 0; round < 20000; ++round) {
        const int shift = round % 31;
        const int maxWidth = any(random) >> shift;
        const int maxHeight = any(random) >> shift;
        const Size size = Fit(any(random) >> (round % 29), any(random), maxWidth, maxHeight);
        if (maxWidth > 0 && maxHeight > 0) {
            EXPECT_LE(size.first, maxWidth) << "seed " << seed << " round " << round;
            EXPECT_LE(size.second, maxHeight) << "seed " << seed << " round " << round;
        }
    }
}

} // namespace
