#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

#include <algorithm>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/StereoSound.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/ffmpeg/AudioPipeline.h"

namespace Zanthe {
namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr float kUntouched = 7.0F;
constexpr std::int64_t kDelay = 1105;         // of a file by LAME, at its own rate
constexpr std::int64_t kSoundFrames = 264600; // six seconds

std::unique_ptr<FFMPEGAudioReader> Tone(int rate = 44100) {
    return FFMPEGAudioReader::Create(MadeMedia("tone-44100-stereo-cbr128.mp3"), -1, rate);
}

bool IsSilent(const std::vector<float>& plane) {
    return std::all_of(plane.begin(), plane.end(), [](float sample) { return sample == 0.0F; });
}

// One read into planes that are filled with a mark, which come back whole.
struct MarkedRead {
    MarkedRead(IAudioReader& reader, std::int64_t start, unsigned int frames)
        : left(frames, kUntouched)
        , right(frames, kUntouched) {
        std::vector<float*> planes{left.data(), right.data()};
        answer = reader.FillAudioBuffer(start, frames, planes);
    }

    bool IsUntouchedFrom(std::size_t index) const {
        const auto untouched = [](float sample) { return sample == kUntouched; };
        const auto offset = static_cast<std::ptrdiff_t>(index);
        return std::all_of(left.begin() + offset, left.end(), untouched) &&
               std::all_of(right.begin() + offset, right.end(), untouched);
    }

    std::vector<float> left;
    std::vector<float> right;
    unsigned int answer = 0;
};

TEST(FFMPEGAudioReader, NothingAtTheStartIsNothing) {
    EXPECT_EQ(MarkedRead(*Tone(), 0, 0).answer, 0U);
}

TEST(FFMPEGAudioReader, WrongNumberOfPlanesAnswersZeroAndTouchesNothing) {
    const auto reader = Tone();
    std::vector<float> plane(100, kUntouched);
    std::vector<float*> three(3, plane.data());
    std::vector<float*> one(1, plane.data());
    std::vector<float*> none;
    EXPECT_EQ(reader->FillAudioBuffer(5000, 100, three), 0U);
    EXPECT_EQ(reader->FillAudioBuffer(5000, 100, one), 0U);
    EXPECT_EQ(reader->FillAudioBuffer(5000, 100, none), 0U);
    EXPECT_EQ(plane, std::vector<float>(100, kUntouched));
}

TEST(FFMPEGAudioReader, BehindTheEndAnswersZeroAndTouchesNothing) {
    const auto reader = Tone();
    for (const std::int64_t start :
         {kDelay + kSoundFrames, std::int64_t{10000000}, kMax / 2, kMax}) {
        const MarkedRead read(*reader, start, 1000);
        EXPECT_EQ(read.answer, 0U) << start;
        EXPECT_TRUE(read.IsUntouchedFrom(0)) << start;
    }
}

TEST(FFMPEGAudioReader, AcrossTheEndAnswersWhatIsThere) {
    const MarkedRead read(*Tone(), kDelay + kSoundFrames - 300, 1000);
    EXPECT_EQ(read.answer, 300U);
    EXPECT_FALSE(IsSilent({read.left.begin(), read.left.begin() + 300}));
    EXPECT_TRUE(read.IsUntouchedFrom(300));
}

TEST(FFMPEGAudioReader, EncodersDelayReadsAsSilence) {
    const StereoSound sound = ReadSpan(*Tone(), 0, 3000);
    ASSERT_EQ(sound.Frames(), 3000U);
    EXPECT_TRUE(IsSilent(sound.Slice(0, kDelay).left));
    EXPECT_FALSE(IsSilent(sound.Slice(kDelay, 100).left));
}

TEST(FFMPEGAudioReader, EncodersDelayIsScaledWithTheRate) {
    const StereoSound sound = ReadSpan(*Tone(22050), 0, 3000);
    ASSERT_EQ(sound.Frames(), 3000U);
    EXPECT_TRUE(IsSilent(sound.Slice(0, kDelay / 2).left));
    EXPECT_FALSE(IsSilent(sound.Slice(kDelay / 2, 100).left));
}

// A span that lies in the delay as a whole is served like one that only begins there.
TEST(FFMPEGAudioReader, SpanWithinTheEncodersDelayIsServedWhole) {
    const auto reader = Tone();
    for (const auto& [start, frames] : {std::pair(0, 300U), std::pair(200, 905U)}) {
        const MarkedRead read(*reader, start, frames);
        EXPECT_EQ(read.answer, frames);
        EXPECT_TRUE(IsSilent(read.left) && IsSilent(read.right));
    }
}

TEST(FFMPEGAudioReader, BeforeTheStartOfTheFileIsSilence) {
    const auto reader = Tone();
    const StereoSound whole = ReadSpan(*reader, 0, 3000);
    const MarkedRead across(*reader, -500, 2500);
    ASSERT_EQ(across.answer, 2500U);
    EXPECT_TRUE(std::equal(across.left.begin() + 500, across.left.end(), whole.left.begin()));
    for (const std::int64_t start : {std::int64_t{-100}, std::int64_t{-5000}, kMin}) {
        const MarkedRead before(*reader, start, 100);
        EXPECT_EQ(before.answer, 100U);
        EXPECT_TRUE(IsSilent(before.left) && IsSilent(before.right));
    }
}

TEST(FFMPEGAudioReader, StreamIndexPlaysNoPart) {
    const auto reader =
        FFMPEGAudioReader::Create(MadeMedia("tone-44100-stereo-cbr128.mp3"), 5, 44100);
    EXPECT_EQ(ReadSpan(*reader, 5000, 1000), ReadSpan(*Tone(), 5000, 1000));
}

TEST(FFMPEGAudioReader, OutputRateBeyondTheLimitsAnswersZero) {
    for (const int rate : {0, -44100, 1, 999, 768001, 2000000000}) {
        const MarkedRead read(*Tone(rate), 0, 100);
        EXPECT_EQ(read.answer, 0U);
        EXPECT_TRUE(read.IsUntouchedFrom(0));
    }
}

TEST(FFMPEGAudioReader, ReadsAtTheLimitsOfTheRate) {
    for (const int rate : {1000, 768000}) {
        EXPECT_EQ(MarkedRead(*Tone(rate), rate, 500).answer, 500U);
    }
}

TEST(FFMPEGAudioReader, MonoIsHeardOnBothSides) {
    const auto reader = FFMPEGAudioReader::Create(MadeMedia("tone-44100-mono-cbr.mp3"), -1, 44100);
    const StereoSound sound = ReadSpan(*reader, 20000, 5000);
    ASSERT_EQ(sound.Frames(), 5000U);
    EXPECT_FALSE(IsSilent(sound.left));
    EXPECT_EQ(sound.left, sound.right);
}

TEST(AudioPipeline, ARequestBehindTheStartForNothingReadsToTheEnd) {
    FFMPEGDecoder::AudioPipeline pipeline(MadeMedia("tone-44100-stereo-cbr128.mp3"), 44100);
    EXPECT_EQ(pipeline.endFrame(), -1);
    FFMPEGDecoder::Buffer nothing(2, 0);
    nothing.start = 1000;
    EXPECT_EQ(pipeline.fill(nothing), 0);
    EXPECT_EQ(pipeline.endFrame(), kDelay + kSoundFrames);
}

// What a read costs is its own length and the pre-roll, wherever it stands.
TEST(AudioPipeline, CostOfAReadDoesNotGrowWithItsPosition) {
    FFMPEGDecoder::AudioPipeline pipeline(MadeMedia("tone-44100-stereo-cbr128.mp3"), 44100);
    const auto costAt = [&](std::int64_t start) {
        const av::WorkCounters before = pipeline.counters();
        FFMPEGDecoder::Buffer request(2, std::int64_t{1152} * 10);
        request.start = start;
        EXPECT_EQ(pipeline.fill(request), 1152 * 10);
        EXPECT_EQ(pipeline.counters().seeks, before.seeks + 1);
        return pipeline.counters().framesDecoded - before.framesDecoded;
    };
    for (const std::int64_t start : {20000, 100000, 240000, 60000}) {
        // 10 of its own and 4 before, and one where either begins within a frame.
        EXPECT_LE(costAt(start), 10 + 4 + 2) << start;
        EXPECT_GE(costAt(start), 10 + 4) << start;
    }
}

TEST(AudioPipeline, LowBitRatesReachFurtherBack) {
    FFMPEGDecoder::AudioPipeline pipeline(MadeMedia("tone-44100-stereo-cbr-low.mp3"), 44100);
    FFMPEGDecoder::Buffer request(2, 1152);
    request.start = 100000;
    EXPECT_EQ(pipeline.fill(request), 1152);
    EXPECT_GE(pipeline.counters().framesDecoded, 10 + 1);
    EXPECT_LE(pipeline.counters().framesDecoded, 10 + 3);
}

// In the pauses of a file with variable bit rate the rule of thumb falls short, and the read goes
// back again for more.
TEST(AudioPipeline, SmallFramesReachFurtherBackWhateverTheAverage) {
    FFMPEGDecoder::AudioPipeline pipeline(MadeMedia("pauses-44100-stereo-vbr.mp3"), 44100);
    std::int64_t furthest = 0;
    for (std::int64_t start = 20000; start < std::int64_t{11} * 44100; start += 1152) {
        const av::WorkCounters before = pipeline.counters();
        FFMPEGDecoder::Buffer request(2, 1152);
        request.start = start;
        ASSERT_EQ(pipeline.fill(request), 1152);
        furthest = std::max(furthest, pipeline.counters().seeks - before.seeks);
    }
    EXPECT_GT(furthest, 1);
    EXPECT_LE(furthest, 3);
}

} // namespace
} // namespace Zanthe
