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

// A constant, whose value a filter keeps where it has all of its neighbours.
std::vector<float> ConvertShort(int rate, int frames) {
    const std::vector<float> input(std::size_t{2} * static_cast<std::size_t>(frames), 0.5F);
    const auto conversion = av::SoundConversion::Create(Stereo(kFrom), Stereo(rate));
    EXPECT_TRUE(conversion->Restart());
    av::SoundBytes out;
    for (int i = 0; i < frames; ++i) { // a frame at a time
        const auto* bytes =
            reinterpret_cast<const std::uint8_t*>(input.data() + std::ptrdiff_t{2} * i);
        EXPECT_TRUE(conversion->Convert(&bytes, 1, out));
    }
    EXPECT_TRUE(conversion->Finish(out));
    std::vector<float> samples(out.bytes.size() / sizeof(float));
    std::memcpy(samples.data(), out.bytes.data(), out.bytes.size());
    EXPECT_EQ(static_cast<std::int64_t>(samples.size()), 2 * out.frames);
    return samples;
}

TEST_P(Conversion, ASoundShorterThanTheFilterComesOut) {
    for (const int frames : {1, 2, 3, 4, 10, 15, 16, 17, 20, 31, 32, 33, 40, 64, 100, 400}) {
        const std::vector<float> samples = ConvertShort(GetParam(), frames);
        const double expected = static_cast<double>(frames) * GetParam() / kFrom;
        ASSERT_NEAR(static_cast<double>(samples.size()) / 2, expected, 1.001) << frames;
        ASSERT_FALSE(samples.empty()) << frames;
        EXPECT_NE(samples[0], 0.0F) << frames;
        EXPECT_LE(*std::max_element(samples.begin(), samples.end()), 1.0F) << frames;
    }
}

TEST(ShortConversion, NothingStaysNothing) {
    const auto conversion = av::SoundConversion::Create(Stereo(kFrom), Stereo(48000));
    av::SoundBytes out;
    EXPECT_TRUE(conversion->Restart());
    EXPECT_TRUE(conversion->Finish(out));
    EXPECT_EQ(out.frames, 0);
}

// A later beginning stands on what came before it, which is not there to be read.
TEST(ShortConversion, TheEndOfASoundIsNotStretched) {
    const auto conversion = av::SoundConversion::Create(Stereo(kFrom), Stereo(48000));
    av::SoundBytes out;
    EXPECT_TRUE(conversion->Restart(conversion->Step()));
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(Noise().data());
    EXPECT_TRUE(conversion->Convert(&bytes, 3, out));
    EXPECT_TRUE(conversion->Finish(out));
    EXPECT_EQ(out.frames, 0);
}

TEST(ShortConversion, ManyConversionsInARowAreEachTheirOwn) {
    const auto conversion = av::SoundConversion::Create(Stereo(kFrom), Stereo(48000));
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(Noise().data());
    std::vector<std::uint8_t> first;
    for (int turn = 0; turn < 3; ++turn) {
        av::SoundBytes out;
        EXPECT_TRUE(conversion->Restart());
        EXPECT_TRUE(conversion->Convert(&bytes, 5, out));
        EXPECT_TRUE(conversion->Finish(out));
        EXPECT_EQ(out.frames, 6);
        first = turn == 0 ? out.bytes : first;
        EXPECT_EQ(out.bytes, first);
    }
}

} // namespace
