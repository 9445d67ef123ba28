#include "platform/av/SoundConversion.h"

#include <algorithm>
#include <cstring>
#include <random>

#include <gtest/gtest.h>

namespace {

constexpr int kFrom = 44100;
constexpr int kFrames = 2 * kFrom;

av::SoundFormat Stereo(int rate) {
    return {AV_SAMPLE_FMT_FLT, rate, 2, 0};
}

const std::vector<float>& Noise() {
    static const std::vector<float> noise = [] {
        std::mt19937 random(11);
        std::vector<float> samples(std::size_t{2} * kFrames);
        for (float& sample : samples) {
            sample = static_cast<float>(random() % 20001) / 10000.0F - 1.0F;
        }
        return samples;
    }();
    return noise;
}

// The noise from frame `at` on, converted piece by piece.
std::vector<std::uint8_t> Convert(int rate, int at, int pieceFrames) {
    const auto conversion = av::SoundConversion::Create(Stereo(kFrom), Stereo(rate));
    EXPECT_TRUE(conversion->Restart(at));
    av::SoundBytes out;
    for (int begin = at; begin < kFrames; begin += pieceFrames) {
        const auto* bytes =
            reinterpret_cast<const std::uint8_t*>(Noise().data() + std::ptrdiff_t{2} * begin);
        EXPECT_TRUE(conversion->Convert(&bytes, std::min(pieceFrames, kFrames - begin), out));
    }
    EXPECT_TRUE(conversion->Finish(out));
    return out.bytes;
}

class Conversion : public testing::TestWithParam<int> {};

TEST_P(Conversion, IsTheSameHoweverTheInputIsCut) {
    const auto whole = Convert(GetParam(), 0, kFrames);
    EXPECT_NEAR(static_cast<double>(whole.size()) / 8, 2.0 * GetParam(), 2);
    for (const int piece : {4096, 1024, 1000, 512, 509, 500, 333}) {
        EXPECT_TRUE(Convert(GetParam(), 0, piece) == whole) << piece;
    }
}

TEST_P(Conversion, IsTheSameFromALaterBeginning) {
    const auto whole = Convert(GetParam(), 0, 512);
    const auto half = Convert(GetParam(), kFrom, 500); // a second on, where all rates line up
    const std::size_t warm = std::size_t{8} * 200;
    const std::size_t offset = std::size_t{8} * static_cast<std::size_t>(GetParam());
    ASSERT_EQ(whole.size(), offset + half.size());
    EXPECT_EQ(std::memcmp(whole.data() + offset + warm, half.data() + warm, half.size() - warm), 0);
}

INSTANTIATE_TEST_SUITE_P(Rates, Conversion,
                         testing::Values(44100, 48000, 32000, 8000, 96000, 9999, 16001, 44001));

} // namespace
