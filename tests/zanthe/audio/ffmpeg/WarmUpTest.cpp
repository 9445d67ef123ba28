#include "zanthe/audio/ffmpeg/WarmUp.h"

#include <limits>

#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/codec_par.h>
#include <libavutil/channel_layout.h>
}

namespace FFMPEGDecoder {
namespace {

constexpr std::int64_t kUnsettled = std::numeric_limits<std::int64_t>::max();

AVCodecParameters Mp3(int rate, int channels) {
    AVCodecParameters parameters{};
    parameters.codec_id = AV_CODEC_ID_MP3;
    parameters.sample_rate = rate;
    parameters.ch_layout.nb_channels = channels;
    return parameters;
}

// Feeds packets of one size from `start` on and answers at which of them it settled.
int PacketsUntilSettled(const AVCodecParameters& stream, int bytes) {
    WarmUp warmUp(stream);
    for (int packet = 0; packet < 2000; ++packet) {
        warmUp.add(100000 + packet * 1152LL, bytes);
        if (warmUp.settledFrom() != kUnsettled) {
            EXPECT_EQ(warmUp.settledFrom(), 100000 + packet * 1152LL);
            return packet;
        }
    }
    return -1;
}

TEST(WarmUp, IsSettledAtTheStartOfTheStream) {
    WarmUp warmUp(Mp3(44100, 2));
    EXPECT_EQ(warmUp.settledFrom(), kUnsettled);
    warmUp.add(0, 400);
    EXPECT_EQ(warmUp.settledFrom(), 0);
}

// 418 - 38 bytes a packet: two hold 511, the third has its whole reservoir, the fourth its overlap.
TEST(WarmUp, LargePacketsSettleSoon) {
    EXPECT_EQ(PacketsUntilSettled(Mp3(44100, 2), 418), 3);
}

// 104 - 38 bytes a packet: eight hold 511.
TEST(WarmUp, SmallPacketsTakeLonger) {
    EXPECT_EQ(PacketsUntilSettled(Mp3(44100, 2), 104), 9);
}

TEST(WarmUp, HalfRatesReachBackLess) {
    EXPECT_EQ(PacketsUntilSettled(Mp3(22050, 1), 104), 5);
}

TEST(WarmUp, ImpossiblySmallPacketsEndToo) {
    EXPECT_EQ(PacketsUntilSettled(Mp3(44100, 2), 1), 512);
}

TEST(WarmUp, OtherCodecsHaveNoReservoir) {
    AVCodecParameters layer2 = Mp3(44100, 2);
    layer2.codec_id = AV_CODEC_ID_MP2;
    EXPECT_EQ(PacketsUntilSettled(layer2, 1), 2);
}

TEST(WarmUp, StartsOverAtASeek) {
    WarmUp warmUp(Mp3(44100, 2));
    warmUp.add(0, 400);
    warmUp.restart();
    EXPECT_EQ(warmUp.settledFrom(), kUnsettled);
}

} // namespace
} // namespace FFMPEGDecoder
