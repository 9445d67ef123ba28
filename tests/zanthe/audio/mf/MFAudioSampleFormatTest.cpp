#include "zanthe/audio/mf/MFAudioSampleFormat.h"

#include <gtest/gtest.h>

#include "platform/mf/MediaFormats.h"
#include "zanthe/audio/mf/AudioTimes.h"
#include "zanthe/audio/mf/CanonicalFormat.h"

namespace Zanthe {
namespace {

TEST(MFAudioSampleFormat, TheCanonicalOneIsStereoFloatAt44100) {
    const MFAudioSampleFormat format = MFAudioSampleFormat::CreateCanonical();
    EXPECT_EQ(format.subtype, MFAudioFormat_Float);
    EXPECT_EQ(format.channels, 2U);
    EXPECT_EQ(format.samplesPerSecond, 44100U);
    EXPECT_EQ(format.bitsPerSample, 32U);
    EXPECT_EQ(format.blockAlign, 8U);
    EXPECT_EQ(CanonicalFormat(), format);
}

TEST(AudioTimes, AFrameComesBackOutOfItsTime) {
    for (const std::uint32_t rate : {8000U, 11025U, 16001U, 44100U, 48000U, 192000U, 768000U}) {
        for (std::int64_t frame = 0; frame < 100'000'000; frame += 7'654'321) {
            EXPECT_EQ(FrameAtTime(TimeOfFrame(frame, rate), rate), frame) << rate;
        }
    }
}

TEST(AudioTimes, ATimeIsTheNearestUnit) {
    EXPECT_EQ(TimeOfFrame(1, 44100), 227); // 226.757
    EXPECT_EQ(TimeOfFrame(-1, 44100), -227);
    EXPECT_EQ(TimeOfFrame(48000, 48000), 10'000'000);
}

TEST(AudioTimes, WhatNoNumberHoldsIsTheNearestOne) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(TimeOfFrame(most, 44100), most);
    EXPECT_EQ(TimeOfFrame(least, 44100), least);
    EXPECT_EQ(TimeOfFrame(1, 0), most);
    EXPECT_EQ(TimeOfFrame(0, 0), 0);
}

} // namespace
} // namespace Zanthe
