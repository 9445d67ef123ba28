#include "zanthe/audio/ffmpeg/Resampler.h"

#include <cmath>
#include <stdexcept>

#include <gtest/gtest.h>

namespace FFMPEGDecoder {
namespace {

constexpr int kMaxSamples = 2304;

Buffer Constant(int channels, std::int64_t frames, float value) {
    Buffer buffer(channels, frames);
    for (const Channel& plane : buffer.channels()) {
        std::fill_n(plane.data(), frames, value);
    }
    return buffer;
}

// A sound without a period, at input frames [start, start + frames).
Buffer Sweep(int channels, std::int64_t start, std::int64_t frames) {
    Buffer buffer(channels, frames);
    buffer.start = start;
    for (std::size_t c = 0; c < buffer.channels().size(); ++c) {
        float* data = buffer.channels()[c].data();
        for (std::int64_t i = 0; i < frames; ++i) {
            const double t = static_cast<double>(start + i) / 44100.0;
            data[i] = static_cast<float>(
                0.5 * std::sin((700.0 + 300.0 * t) * (static_cast<double>(c) + 1.0) * t));
        }
    }
    return buffer;
}

// Collects what a conversion hands on, by position.
struct Collected {
    std::int64_t start = -1;
    std::vector<float> left;

    Resampler::Sink Sink() {
        return [this](const Buffer& converted) {
            if (converted.empty()) {
                return;
            }
            if (start < 0) {
                start = converted.start;
            }
            EXPECT_EQ(converted.start, start + static_cast<std::int64_t>(left.size()));
            const float* data = converted.channels()[0].data();
            left.insert(left.end(), data, data + converted.frames());
        };
    }
};

TEST(ResampleStart, FollowsTheGridOfCommonPositions) {
    EXPECT_EQ(ResampleStart::at(1000, 0, 44100, 48000), (ResampleStart{118, 960, 1088}));
}

TEST(ResampleStart, EqualRatesNeedNoSilence) {
    EXPECT_EQ(ResampleStart::at(1234, 0, 44100, 44100), (ResampleStart{0, 1234, 1234}));
}

TEST(ResampleStart, OnTheGridNeedsNoSilence) {
    EXPECT_EQ(ResampleStart::at(std::int64_t{147} * 7, 0, 44100, 48000),
              (ResampleStart{0, 1120, 1120}));
}

TEST(ResampleStart, CoprimeRatesReachBackUpToASecond) {
    EXPECT_EQ(ResampleStart::at(47999, 0, 48000, 16001).padding, 47999);
}

TEST(ResampleStart, OutputRateZeroHasAGridOfOneFrame) {
    EXPECT_EQ(ResampleStart::at(1000, 0, 44100, 0), (ResampleStart{0, 0, 0}));
}

TEST(ResampleStart, OffsetShiftsTheGrid) {
    EXPECT_EQ(ResampleStart::at(1000, 1000, 44100, 48000), (ResampleStart{0, 0, 0}));
}

TEST(ResamplerImpl, TakesTwoFramesOfMp3ButNotOneSampleMore) {
    ResamplerImpl resampler(2, 44100, 48000, kMaxSamples);
    EXPECT_FALSE(resampler.used());
    EXPECT_GT(resampler.resample(Buffer(2, kMaxSamples)).frames(), 0);
    EXPECT_TRUE(resampler.used());
    try {
        resampler.resample(Buffer(2, kMaxSamples + 1));
        FAIL() << "2305 frames were taken";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "too many samples passed into ResamplerImpl::resample()");
    }
}

TEST(ResamplerImpl, NumbersItsOutputWithoutGaps) {
    ResamplerImpl resampler(2, 44100, 48000, kMaxSamples);
    std::int64_t expected = 0;
    for (int i = 0; i < 5; ++i) {
        const Buffer out = resampler.resample(Buffer(2, 1000 + i));
        EXPECT_EQ(out.start, expected);
        expected += out.frames();
        EXPECT_EQ(resampler.outPosition(), expected);
    }
}

TEST(ResamplerImpl, MonoComesOutOnBothSides) {
    ResamplerImpl resampler(1, 44100, 44100, kMaxSamples);
    const Buffer out = resampler.resample(Constant(1, 100, 1.0F));
    ASSERT_EQ(out.channels().size(), 2U);
    ASSERT_EQ(out.frames(), 100);
    EXPECT_FLOAT_EQ(out.channels()[0].data()[50], std::sqrt(0.5F));
    EXPECT_EQ(out.channels()[0].data()[50], out.channels()[1].data()[50]);
}

// Left and right each carry themselves; the centre and the side of their own half join at
// 1/sqrt(2); the low frequency channel is left out.
TEST(ResamplerImpl, SixChannelsAreMixedAsFivePointOne) {
    const double expectedLeft[6] = {1, 0, std::sqrt(0.5), 0, std::sqrt(0.5), 0};
    for (std::size_t only = 0; only < 6; ++only) {
        ResamplerImpl resampler(6, 48000, 48000, kMaxSamples);
        Buffer input(6, 64);
        std::fill_n(input.channels()[only].data(), 64, 0.5F);
        const Buffer out = resampler.resample(input);
        ASSERT_EQ(out.channels().size(), 2U);
        ASSERT_EQ(out.frames(), 64);
        EXPECT_NEAR(out.channels()[0].data()[32], 0.5 * expectedLeft[only], 1e-6)
            << "channel " << only;
    }
}

TEST(ResamplerImpl, ThreeChannelsAreLeftToTheLibrarysLayout) {
    ResamplerImpl resampler(3, 44100, 48000, kMaxSamples);
    const Buffer out = resampler.resample(Constant(3, 1000, 0.25F));
    ASSERT_EQ(out.channels().size(), 2U);
    ASSERT_GT(out.frames(), 500);
    EXPECT_GT(out.channels()[0].data()[500], 0.2F);
    EXPECT_GT(out.channels()[1].data()[500], 0.2F);
}

TEST(ResamplerImpl, InputWithFewerChannelsThanAnnouncedIsHeardOnAll) {
    ResamplerImpl resampler(2, 44100, 44100, kMaxSamples);
    const Buffer out = resampler.resample(Constant(1, 10, 0.5F));
    EXPECT_EQ(out.channels()[0].data()[5], 0.5F);
    EXPECT_EQ(out.channels()[1].data()[5], 0.5F);
}

TEST(ResamplerImpl, RefusedRatesAnswerWithNothing) {
    for (const int rate : {0, -1, 1, 999, 768001, 2000000000}) {
        ResamplerImpl resampler(2, 44100, rate, kMaxSamples);
        EXPECT_EQ(resampler.resample(Buffer(2, 100)).frames(), 0);
        EXPECT_EQ(resampler.resample(Buffer(0, 0)).frames(), 0);
    }
}

TEST(ResamplerWithPaddingImpl, AllBeforeTheTrimPositionGivesNothingAtStartZero) {
    ResamplerWithPaddingImpl resampler(2, 44100, 44100, kMaxSamples);
    resampler.setTrimPosition(1000);
    const Buffer out = resampler.resampleTrimmed(Buffer(2, 500));
    EXPECT_EQ(out.frames(), 0);
    EXPECT_EQ(out.start, 0);
}

TEST(ResamplerWithPaddingImpl, ChunksInputOfAnyLength) {
    ResamplerWithPaddingImpl resampler(2, 44100, 44100, kMaxSamples);
    resampler.setTrimPosition(2500);
    std::vector<std::int64_t> lengths;
    resampler.resampleChunked(Buffer(2, 2 * kMaxSamples + 10),
                              [&](const Buffer& out) { lengths.push_back(out.frames()); });
    EXPECT_EQ(lengths, (std::vector<std::int64_t>{0, 2 * kMaxSamples - 2500, 10}));
}

TEST(ResamplerWithPaddingImpl, ChunkingNothingDoesNothing) {
    ResamplerWithPaddingImpl resampler(2, 44100, 48000, kMaxSamples);
    resampler.resampleChunked(Buffer(2, 0), [](const Buffer&) { FAIL(); });
    resampler.resampleChunked(Buffer(0, 0), [](const Buffer&) { FAIL(); });
    EXPECT_FALSE(resampler.used());
}

TEST(Resampler, SinkRunsAlsoWhenAllIsTrimmed) {
    Resampler resampler(2, 48000, 16001, kMaxSamples);
    resampler.restart(47000, 0);
    int calls = 0;
    resampler.convert(Buffer(2, 1), [&](const Buffer& out) {
        ++calls;
        EXPECT_EQ(out.frames(), 0);
        EXPECT_EQ(out.start, 0);
    });
    EXPECT_EQ(calls, 1);
}

class ResamplerPhase : public testing::TestWithParam<std::pair<int, int>> {};

// Begun in the middle, the conversion gives the very samples of one begun at the start.
TEST_P(ResamplerPhase, RestartIsInPhaseWithTheWholeConversion) {
    const auto [inRate, outRate] = GetParam();
    constexpr std::int64_t kFrames = 60000;
    const Buffer sound = Sweep(1, 0, kFrames);

    Resampler linear(1, inRate, outRate, kMaxSamples);
    linear.restart(0, 0);
    Collected whole;
    for (std::int64_t at = 0; at < kFrames; at += 1152) {
        linear.convert(sound.slice(at, 1152), whole.Sink());
    }
    linear.drain(whole.Sink());

    for (const std::int64_t start : {1L, 1000L, 12345L, 50001L}) {
        Resampler middle(1, inRate, outRate, kMaxSamples);
        middle.restart(start, 0);
        Collected part;
        for (std::int64_t at = start; at < kFrames; at += 777) {
            middle.convert(sound.slice(at, 777), part.Sink());
        }
        middle.drain(part.Sink());

        // The filter must have filled before the samples can agree.
        const std::int64_t warmUp = 64 * (1 + static_cast<std::int64_t>(outRate) / inRate);
        ASSERT_EQ(part.start, ResampleStart::at(start, 0, inRate, outRate).trimPosition);
        ASSERT_EQ(part.start + static_cast<std::int64_t>(part.left.size()),
                  static_cast<std::int64_t>(whole.left.size()));
        for (std::size_t i = static_cast<std::size_t>(warmUp); i < part.left.size(); ++i) {
            ASSERT_EQ(part.left[i], whole.left[static_cast<std::size_t>(part.start) + i])
                << "start " << start << ", output frame " << part.start + static_cast<long>(i);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, ResamplerPhase,
                         testing::Values(std::pair(44100, 44100), std::pair(44100, 48000),
                                         std::pair(48000, 44100), std::pair(44100, 32000),
                                         std::pair(22050, 44100), std::pair(8000, 44100),
                                         std::pair(48000, 16001), std::pair(44100, 16001)),
                         [](const auto& test) {
                             return std::to_string(test.param.first) + "to" +
                                    std::to_string(test.param.second);
                         });

TEST(Resampler, IsFreshAfterDraining) {
    Resampler resampler(2, 44100, 48000, kMaxSamples);
    resampler.restart(1000, 0);
    resampler.convert(Buffer(2, 1000), [](const Buffer&) {});
    resampler.drain([](const Buffer& rest) { EXPECT_GT(rest.frames(), 0); });
    EXPECT_TRUE(resampler.impl().flushed());
    resampler.convert(Buffer(2, 1000), [](const Buffer& out) { EXPECT_EQ(out.start, 0); });
    EXPECT_FALSE(resampler.impl().flushed());
    EXPECT_EQ(resampler.impl().trimPosition(), 0);
}

TEST(Resampler, DrainBringsOutAllThatWentIn) {
    Resampler resampler(2, 8000, 48000, kMaxSamples);
    resampler.restart(0, 0);
    Collected all;
    for (int i = 0; i < 10; ++i) {
        resampler.convert(Buffer(2, 2304), all.Sink());
    }
    resampler.drain(all.Sink());
    EXPECT_NEAR(static_cast<double>(all.left.size()), 10 * 2304 * 6.0, 6 * 40.0);
}

} // namespace
} // namespace FFMPEGDecoder
