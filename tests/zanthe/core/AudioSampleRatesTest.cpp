#include "zanthe/core/AudioSampleRates.h"

#include <limits>
#include <set>

#include <gtest/gtest.h>

using Zanthe::AudioSampleRateSupported;
using Zanthe::ConvertFrameCount;

namespace {

constexpr std::int64_t Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t Min = std::numeric_limits<std::int64_t>::min();

TEST(AudioSampleRateSupported, SevenRatesAndNoOther) {
    const std::set<unsigned int> supported{48000, 44100, 32000, 22050, 16000, 11025, 8000};
    for (unsigned int rate = 0; rate <= 200000; ++rate) {
        ASSERT_EQ(AudioSampleRateSupported(rate), supported.count(rate) == 1) << rate;
    }
    EXPECT_FALSE(AudioSampleRateSupported(std::numeric_limits<unsigned int>::max()));
}

TEST(ConvertFrameCount, EqualRatesGiveTheCountBack) {
    EXPECT_EQ(ConvertFrameCount(1000, 48000, 48000), 1000);
    EXPECT_EQ(ConvertFrameCount(-7, 12345, 12345), -7);
    EXPECT_EQ(ConvertFrameCount(5, 0, 0), 5);
    EXPECT_EQ(ConvertFrameCount(Max, -1, -1), Max);
    EXPECT_EQ(ConvertFrameCount(Min, 44100, 44100), Min);
}

TEST(ConvertFrameCount, To44100) {
    EXPECT_EQ(ConvertFrameCount(1000, 48000, 44100), 918);  // 918.75
    EXPECT_EQ(ConvertFrameCount(1000, 32000, 44100), 1378); // 1378.125
    EXPECT_EQ(ConvertFrameCount(1000, 22050, 44100), 1378); // the factor of 32000
    EXPECT_EQ(ConvertFrameCount(1000, 16000, 44100), 2756); // 2756.25
    EXPECT_EQ(ConvertFrameCount(1000, 11025, 44100), 4000);
    EXPECT_EQ(ConvertFrameCount(1000, 8000, 44100), 5512); // 5512.5
}

TEST(ConvertFrameCount, From44100) {
    EXPECT_EQ(ConvertFrameCount(1000, 44100, 48000), 1088); // 1088.43
    EXPECT_EQ(ConvertFrameCount(1000, 44100, 32000), 725);  // 725.62
    EXPECT_EQ(ConvertFrameCount(1000, 44100, 22050), 500);
    EXPECT_EQ(ConvertFrameCount(1000, 44100, 16000), 362); // 362.81
    EXPECT_EQ(ConvertFrameCount(1000, 44100, 11025), 250);
    EXPECT_EQ(ConvertFrameCount(1000, 44100, 8000), 181); // 181.41
}

TEST(ConvertFrameCount, ASecondIsASecond) {
    for (const std::int64_t rate : {48000, 32000, 16000, 11025, 8000}) {
        EXPECT_EQ(ConvertFrameCount(rate, rate, 44100), 44100) << rate;
        EXPECT_EQ(ConvertFrameCount(44100, 44100, rate), rate) << rate;
    }
    EXPECT_EQ(ConvertFrameCount(44100, 44100, 22050), 22050);
    EXPECT_EQ(ConvertFrameCount(16000, 22050, 44100), 22050); // and not 32000
}

TEST(ConvertFrameCount, CutsOffTowardZero) {
    EXPECT_EQ(ConvertFrameCount(-1000, 48000, 44100), -918);
    EXPECT_EQ(ConvertFrameCount(-1, 44100, 8000), 0);
    EXPECT_EQ(ConvertFrameCount(1, 44100, 8000), 0);
    EXPECT_EQ(ConvertFrameCount(0, 44100, 8000), 0);
}

TEST(ConvertFrameCount, PairsWithout44100GiveZero) {
    EXPECT_EQ(ConvertFrameCount(1000, 48000, 32000), 0);
    EXPECT_EQ(ConvertFrameCount(1000, 8000, 16000), 0);
    EXPECT_EQ(ConvertFrameCount(1000, 96000, 44100), 0);
    EXPECT_EQ(ConvertFrameCount(1000, 44100, 96000), 0);
    EXPECT_EQ(ConvertFrameCount(1000, 44100, 0), 0);
    EXPECT_EQ(ConvertFrameCount(1000, -44100, 44100), 0);
}

TEST(ConvertFrameCount, ACountTooLargeToMultiplyGivesZero) {
    constexpr std::int64_t largest = Max / 14700;
    EXPECT_EQ(ConvertFrameCount(largest, 48000, 44100), largest * 14700 / 16000);
    EXPECT_EQ(ConvertFrameCount(largest + 1, 48000, 44100), 0);
    EXPECT_EQ(ConvertFrameCount(-largest, 48000, 44100), -largest * 14700 / 16000);
    EXPECT_EQ(ConvertFrameCount(-largest - 1, 48000, 44100), 0);
    EXPECT_EQ(ConvertFrameCount(Max / 4, 11025, 44100), Max / 4 * 4);
    EXPECT_EQ(ConvertFrameCount(Max / 4 + 1, 11025, 44100), 0);
    EXPECT_EQ(ConvertFrameCount(Min / 4, 11025, 44100), Min);
    EXPECT_EQ(ConvertFrameCount(Min, 44100, 48000), 0);
}

} // namespace
