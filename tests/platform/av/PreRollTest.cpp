#include "platform/av/PreRoll.h"

#include <gtest/gtest.h>

namespace {

av::PreRoll Of(AVCodecID codec, int rate = 44100, int channels = 2, int frameSize = 0) {
    const av::ParametersPtr parameters(avcodec_parameters_alloc());
    parameters->codec_id = codec;
    parameters->sample_rate = rate;
    parameters->ch_layout.nb_channels = channels;
    parameters->frame_size = frameSize;
    return av::PreRoll(*parameters);
}

TEST(PreRoll, SamplesAsTheyAreNeedNone) {
    for (const AVCodecID codec : {AV_CODEC_ID_PCM_S16LE, AV_CODEC_ID_PCM_F64BE,
                                  AV_CODEC_ID_PCM_ALAW, AV_CODEC_ID_FLAC, AV_CODEC_ID_ALAC}) {
        EXPECT_TRUE(Of(codec).IsNone()) << codec;
        EXPECT_EQ(Of(codec).PacketsOf({100, 100}), 0U);
    }
}

TEST(PreRoll, BandReplicationNeedsMoreThanAnOverlap) {
    EXPECT_EQ(Of(AV_CODEC_ID_AAC, 44100, 2, 1024).PacketsOf({}), 3U);
    EXPECT_EQ(Of(AV_CODEC_ID_AAC, 44100, 2, 2048).PacketsOf({}), 16U);
}

TEST(PreRoll, WhatIsNotKnownGetsSome) {
    EXPECT_GT(Of(AV_CODEC_ID_ATRAC3).PacketsOf({}), 4U);
}

// A frame of layer 3 has 38 bytes besides what others may lean on.
TEST(PreRoll, TheReservoirIsCountedInBytes) {
    const av::PreRoll preRoll = Of(AV_CODEC_ID_MP3);
    const std::deque<int> large(20, 417);
    EXPECT_EQ(preRoll.PacketsOf(large), 4U); // two, and two that hold 758 bytes
    const std::deque<int> small(100, 48);
    EXPECT_EQ(preRoll.PacketsOf(small), 2U + 52U);
}

TEST(PreRoll, TooFewPacketsAreNotEnough) {
    const av::PreRoll preRoll = Of(AV_CODEC_ID_MP3);
    EXPECT_GT(preRoll.PacketsOf(std::deque<int>(10, 48)), 10U);
    EXPECT_GT(preRoll.PacketsOf({}), 0U);
}

TEST(PreRoll, SizesThatSayNothingEndTheCountingToo) {
    EXPECT_LE(Of(AV_CODEC_ID_MP3).PacketsOf(std::deque<int>(5000, 1)), 1024U);
}

} // namespace
