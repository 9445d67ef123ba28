#include "zanthe/audio/ffmpeg/Decoder.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace FFMPEGDecoder {
namespace {

using testing::ThrowsMessage;

constexpr std::int64_t kDelay = 1105; // of a file by LAME, in frames

// Decodes to the end and answers the spans that came out, one a packet.
std::vector<FrameRange> Spans(Decoder& decoder) {
    std::vector<FrameRange> spans;
    while (
        decoder.decodeToFrame([&](const Buffer& samples) { spans.push_back(samples.range()); })) {
    }
    return spans;
}

void ExpectContiguous(const std::vector<FrameRange>& spans) {
    for (std::size_t i = 1; i < spans.size(); ++i) {
        EXPECT_EQ(spans[i].start, spans[i - 1].End()) << "span " << i;
    }
}

TEST(PacketReader, MissingFileOrFolderOrTextDoesNotOpen) {
    const TemporaryFolder folder;
    const auto refused =
        ThrowsMessage<std::runtime_error>("PacketReader() - m_formatContext->openInput failed");
    EXPECT_THAT([&] { PacketReader(folder / "missing.mp3"); }, refused);
    EXPECT_THAT([&] { PacketReader(folder.Path().string()); }, refused);
    EXPECT_THAT([&] { PacketReader(folder.Write("empty.mp3", "")); }, refused);
    EXPECT_THAT([&] { PacketReader("/dev/zero"); }, refused);
    EXPECT_THAT([&] { PacketReader(folder.Write("a.mp3", "Dear diary, no music today.\n")); },
                refused);
}

TEST(PacketReader, PicturesAloneAreNoSound) {
    EXPECT_THAT([] { PacketReader(MadeMedia("pictures-only.mp4")); },
                ThrowsMessage<std::runtime_error>("PacketReader() - No audio stream exists"));
}

TEST(PacketReader, NameIsNeverTakenForAnAddress) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("http:song: 100%.mp3",
                                          ReadWholeFile(MadeMedia("tone-44100-stereo-cbr128.mp3")));
    EXPECT_EQ(PacketReader(path).stream().codecpar->sample_rate, 44100);
}

TEST(Decoder, FirstFrameStandsBehindTheEncodersDelay) {
    Decoder decoder(MadeMedia("tone-44100-stereo-cbr128.mp3"));
    const std::vector<FrameRange> spans = Spans(decoder);
    ASSERT_GT(spans.size(), 2U);
    EXPECT_EQ(spans[0], (FrameRange{kDelay, 1152 - kDelay}));
    EXPECT_EQ(spans[1], (FrameRange{1152, 1152}));
    ExpectContiguous(spans);
    EXPECT_EQ(spans.back().End(), kDelay + 6 * 44100);
}

// A frame of MPEG-2 is shorter than the delay: the first packet gives a frame of which nothing is
// left, and that is not the end of the stream.
TEST(Decoder, FrameWithinTheEncodersDelayIsDeliveredWithoutSamples) {
    Decoder decoder(MadeMedia("tone-22050-stereo-cbr.mp3"));
    bool called = false;
    EXPECT_TRUE(decoder.decodeToFrame([&](const Buffer&) { called = true; }));
    EXPECT_FALSE(called);
    const std::vector<FrameRange> spans = Spans(decoder);
    EXPECT_EQ(spans[0], (FrameRange{kDelay, 2 * 576 - kDelay}));
    ExpectContiguous(spans);
    EXPECT_EQ(spans.back().End(), kDelay + 6 * 22050);
}

TEST(Decoder, SeekWithinTheDelayGivesTheSamplesOfAReadFromTheStart) {
    Decoder decoder(MadeMedia("tone-22050-stereo-cbr.mp3"));
    decoder.seek(600);
    EXPECT_EQ(Spans(decoder).front(), (FrameRange{kDelay, 2 * 576 - kDelay}));
}

TEST(Decoder, WithoutAHeaderOfTheEncoderNothingIsCut) {
    Decoder decoder(MadeMedia("tone-44100-stereo-cbr-noxing.mp3"));
    EXPECT_EQ(Spans(decoder).front(), (FrameRange{0, 1152}));
}

TEST(Decoder, SoundAtIndexTwoIsFoundAndOtherPacketsArePassedOver) {
    Decoder decoder(MadeMedia("sound-at-index-2.nut"));
    EXPECT_EQ(decoder.sampleRate(), 44100);
    EXPECT_EQ(decoder.channels(), 2);
    const std::vector<FrameRange> spans = Spans(decoder);
    EXPECT_GT(spans.size(), 70U);
    ExpectContiguous(spans);
    EXPECT_GT(decoder.counters().packetsRead, static_cast<std::int64_t>(spans.size()) + 15);
}

TEST(Decoder, CoverArtIsNoStreamOfSound) {
    Decoder decoder(MadeMedia("tone-44100-stereo-id3-cover.mp3"));
    EXPECT_EQ(Spans(decoder).front().start, kDelay);
}

TEST(Decoder, EndOfFileGivesNothingAndDrainingTwiceIsRefused) {
    Decoder decoder(MadeMedia("tone-8000-mono-cbr.mp3"));
    Spans(decoder);
    EXPECT_THAT([&] { decoder.decodeToFrame({}); },
                ThrowsMessage<std::runtime_error>("Error sending packet"));
    decoder.seek(0);
    EXPECT_TRUE(decoder.decodeToFrame({}));
}

TEST(Decoder, SeeksToThePacketOfAFrame) {
    Decoder decoder(MadeMedia("tone-44100-stereo-vbr.mp3"));
    for (const std::int64_t frame : {100000, 5000, 200001, 1152 * 20, 0}) {
        decoder.seek(frame);
        FrameRange first;
        decoder.decodeToFrame([&](const Buffer& samples) { first = samples.range(); });
        EXPECT_LE(first.start, std::max(frame, kDelay));
        EXPECT_GT(first.End(), frame);
    }
}

TEST(Decoder, LayerTwoComesOutAsFloatsToo) {
    const TemporaryFolder folder;
    const std::string path = folder / "layer2.mp3";
    const std::string command =
        "ffmpeg -nostdin -v error -f lavfi -i sine=d=1 -c:a mp2 -f mp2 '" + path + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    Decoder decoder(path);
    EXPECT_GT(Spans(decoder).size(), 30U);
}

TEST(Decoder, CodecWithoutPlanarFloatIsRefused) {
    const TemporaryFolder folder;
    const std::string path = folder / "really-flac.mp3";
    const std::string command =
        "ffmpeg -nostdin -v error -f lavfi -i sine=d=1 -f flac '" + path + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_THAT([&] { Decoder decoder(path); },
                ThrowsMessage<std::runtime_error>("Decoder() - open failed"));
}

TEST(FrameClock, NeedsARateAndATickAFrame) {
    AVCodecParameters parameters{};
    AVStream stream{};
    stream.codecpar = &parameters;
    const auto refused = ThrowsMessage<std::runtime_error>("Decoder() - receiveParameters failed");
    for (const auto& [rate, timeBase] :
         {std::pair(0, AVRational{1, 14112000}), std::pair(-1, AVRational{1, 14112000}),
          std::pair(44100, AVRational{1, 1000}), std::pair(44100, AVRational{0, 1}),
          std::pair(2000000000, AVRational{1, 2000000000}),
          std::pair(44100, AVRational{2000000000, 1})}) {
        parameters.sample_rate = rate;
        stream.time_base = timeBase;
        EXPECT_THAT([&] { FrameClock clock(stream); }, refused) << rate;
    }
}

TEST(FrameClock, CountsFrames) {
    AVCodecParameters parameters{};
    AVStream stream{};
    stream.codecpar = &parameters;
    parameters.sample_rate = 22050;
    stream.time_base = {1, 14112000};
    const FrameClock clock(stream);
    EXPECT_EQ(clock.framesFromTicks(640 * 576), 576);
    EXPECT_EQ(clock.timestampOfFrame(576), 640 * 576);
}

TEST(FrameClock, TimeBaseWithoutDenominatorIsAMicrosecond) {
    AVCodecParameters parameters{};
    AVStream stream{};
    stream.codecpar = &parameters;
    parameters.sample_rate = 8000;
    EXPECT_EQ(FrameClock(stream).timestampOfFrame(8000), 1000000);
}

} // namespace
} // namespace FFMPEGDecoder
