#include "zanthe/audio/BRECLibAudioMediaReader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/brec/Reader.h"
#include "tests/support/FfmpegPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"

using testing::Each;
using testing::ElementsAre;

namespace Zanthe {
namespace {

// A track whose frame n is the pair (n, -n), and which remembers what it was asked.
class ScriptedTrack : public BREC::MP4TrackReader {
public:
    std::uint64_t length = 100;
    unsigned int mostFrames = std::numeric_limits<unsigned int>::max(); // delivered by one call
    unsigned int boast = 0; // added to the answer, without a frame behind it
    std::vector<std::pair<std::uint64_t, unsigned int>> calls;
    std::vector<const unsigned char*> buffers;

    // BREC::MP4TrackReader
    int type() const override { return BREC::AudioTrack; }

    std::string codec() const override { return "sowt"; }

    std::uint32_t width() const override { return 0; }

    std::uint32_t height() const override { return 0; }

    std::uint64_t lengthInFrames() const override { return length; }

    unsigned int fillAudioBuffer(std::uint64_t startFrame, unsigned int frameCount,
                                 unsigned char* buffer) override {
        calls.emplace_back(startFrame, frameCount);
        buffers.push_back(buffer);
        const unsigned int frames = std::min(frameCount, mostFrames);
        for (unsigned int i = 0; i < frames; ++i) {
            const auto value = static_cast<std::int16_t>(startFrame + i);
            const std::int16_t pair[2] = {value, static_cast<std::int16_t>(-value)};
            std::memcpy(buffer + i * sizeof(pair), pair, sizeof(pair));
        }
        return frames + boast;
    }

    bool decodeFrameAtTime(double, unsigned char*, unsigned int, double*, double, double,
                           double) override {
        return false;
    }
};

constexpr float Untouched = 9.0F;

class BrecReads : public testing::Test {
protected:
    unsigned int Read(std::int64_t startFrame, unsigned int frameCount) {
        std::vector<float*> channels{left.data(), right.data()};
        return m_reader.FillAudioBuffer(startFrame, frameCount, channels);
    }

    boost::shared_ptr<ScriptedTrack> m_track = boost::make_shared<ScriptedTrack>();
    BRECLibAudioMediaReader m_reader{m_track};
    std::vector<float> left = std::vector<float>(8, Untouched);
    std::vector<float> right = std::vector<float>(8, Untouched);
};

TEST_F(BrecReads, SamplesAreSeparatedAndScaled) {
    EXPECT_EQ(Read(10, 3), 3U);
    EXPECT_THAT(m_track->calls, ElementsAre(std::pair(10U, 3U)));
    EXPECT_EQ(left[0], 10 * 3.0517578e-05F);
    EXPECT_EQ(left[2], 12 * 3.0517578e-05F);
    EXPECT_EQ(right[0], -10 * 3.0517578e-05F);
    EXPECT_EQ(right[2], -12 * 3.0517578e-05F);
    EXPECT_EQ(left[3], Untouched);
    EXPECT_EQ(right[3], Untouched);
}

TEST_F(BrecReads, FullScaleIsOne) {
    m_track->length = 40000;
    EXPECT_EQ(Read(32767, 2), 2U);
    EXPECT_EQ(left[0], 32767.0F / 32768.0F);
    EXPECT_EQ(left[1], -1.0F);
}

TEST_F(BrecReads, AReadAtTheEndGivesNothing) {
    EXPECT_EQ(Read(100, 1), 0U);
    EXPECT_EQ(Read(101, 1), 0U);
    EXPECT_EQ(Read(std::numeric_limits<std::int64_t>::max(), 8), 0U);
    EXPECT_TRUE(m_track->calls.empty());
    EXPECT_THAT(left, Each(Untouched));
}

TEST_F(BrecReads, ANegativeStartGivesNothing) {
    EXPECT_EQ(Read(-1, 4), 0U);
    EXPECT_EQ(Read(std::numeric_limits<std::int64_t>::min(), 4), 0U);
    EXPECT_TRUE(m_track->calls.empty());
}

TEST_F(BrecReads, AReadPastTheEndIsShortened) {
    EXPECT_EQ(Read(97, 8), 3U);
    EXPECT_THAT(m_track->calls, ElementsAre(std::pair(97U, 3U)));
    EXPECT_EQ(left[2], 99 * 3.0517578e-05F);
    EXPECT_EQ(left[3], Untouched);
    EXPECT_EQ(right[7], Untouched);
}

TEST_F(BrecReads, TheLastFrameAlone) {
    EXPECT_EQ(Read(99, 8), 1U);
    EXPECT_EQ(Read(99, 1), 1U);
}

TEST_F(BrecReads, OnlyTwoChannelsAreServed) {
    for (const std::size_t count : {0, 1, 3}) {
        std::vector<float*> channels(count, left.data());
        EXPECT_EQ(m_reader.FillAudioBuffer(0, 4, channels), 0U) << count;
    }
    EXPECT_TRUE(m_track->calls.empty());
    EXPECT_THAT(left, Each(Untouched));
}

TEST_F(BrecReads, TheTracksOwnCountIsTheAnswer) {
    m_track->mostFrames = 2;
    EXPECT_EQ(Read(0, 5), 2U);
    EXPECT_EQ(left[2], Untouched);
    m_track->mostFrames = 0;
    EXPECT_EQ(Read(0, 5), 0U);
}

TEST_F(BrecReads, NoMoreIsBelievedThanWasAskedFor) {
    m_track->boast = 1000;
    EXPECT_EQ(Read(0, 4), 4U);
    EXPECT_EQ(left[4], Untouched);
    EXPECT_EQ(right[4], Untouched);
}

TEST_F(BrecReads, ShorterReadsUseTheSameScratch) {
    Read(0, 8);
    Read(20, 8);
    Read(50, 1);
    Read(30, 5);
    EXPECT_THAT(m_track->buffers, Each(m_track->buffers.front()));
}

TEST_F(BrecReads, AReadOfNothing) {
    EXPECT_EQ(Read(0, 0), 0U);
    EXPECT_THAT(left, Each(Untouched));
}

unsigned int FramesOf(IAudioReader& reader) {
    std::vector<float> left(16), right(16);
    std::vector<float*> channels{left.data(), right.data()};
    return reader.FillAudioBuffer(0, 16, channels);
}

TEST(BRECLibAudioMediaReader, TheTrackAtTheIndexComesAtStereoAndCdRate) {
    const auto track = [](std::uint64_t length) {
        auto made = boost::make_shared<ScriptedTrack>();
        made->length = length;
        return made;
    };
    int opened = 0;
    const auto open = [&](const std::string& path, const BREC::AudioFormat& format,
                          BREC::AACDecoderFactory* aacDecoders) {
        ++opened;
        EXPECT_EQ(path, "a.brec");
        EXPECT_EQ(format.sampleRate(), 44100);
        EXPECT_EQ(format.channelCount(), 2);
        EXPECT_EQ(aacDecoders, nullptr);
        return boost::make_shared<BREC::Reader>(
            std::vector<boost::shared_ptr<BREC::MP4TrackReader>>{track(1), track(2), track(3)});
    };
    for (const int index : {0, 1, 2}) {
        BRECLibAudioMediaReader reader("a.brec", index, open);
        EXPECT_EQ(FramesOf(reader), static_cast<unsigned int>(index + 1));
    }
    BRECLibAudioMediaReader none("a.brec", 3, open);
    EXPECT_EQ(FramesOf(none), 0U);
    EXPECT_EQ(opened, 4);
}

TEST(BRECLibAudioMediaReader, ARecordingThatCannotBeOpenedGivesNothing) {
    const TemporaryFolder folder;
    BRECLibAudioMediaReader missing(folder / "none.brec", 0);
    EXPECT_EQ(FramesOf(missing), 0U);
    BRECLibAudioMediaReader text(folder.Write("text.brec", "no recording"), 0);
    EXPECT_EQ(FramesOf(text), 0U);
}

TEST(BRECLibAudioMediaReader, ATrackThatIsNotThereGivesNothing) {
    const std::string path = MadeMedia("audio-select/sound.brec");
    for (const int track : {-1, 2, std::numeric_limits<int>::min(), 1000}) {
        BRECLibAudioMediaReader reader(path, track);
        EXPECT_EQ(FramesOf(reader), 0U) << track;
    }
}

// As the ffmpeg program decodes one stream, in 16-bit samples of two channels at 44100 Hz.
std::vector<std::int16_t> OfFfmpeg(const std::string& path, int stream) {
    const std::string bytes =
        OutputOf("ffmpeg -nostdin -v error -i '" + path + "' -map 0:" + std::to_string(stream) +
                 " -f s16le -ar 44100 -ac 2 -");
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return samples;
}

class RecordedTrack : public testing::TestWithParam<int> {};

TEST_P(RecordedTrack, IsReadThroughTheFactoryWhateverRateIsAskedFor) {
    const std::string path = MadeMedia("rec-sounds.brec");
    const auto reader =
        AudioMediaReaderFactory(path, GetParam(), 48000).Create_AudioMediaReader(true);
    const auto expected = OfFfmpeg(path, GetParam());
    constexpr unsigned int Frames = 132300; // three seconds
    std::vector<float> left(Frames + 100, Untouched), right(Frames + 100, Untouched);
    std::vector<float*> channels{left.data(), right.data()};
    const unsigned int read = reader->FillAudioBuffer(0, Frames + 100, channels);
    EXPECT_NEAR(read, Frames, 100);
    // ffmpeg goes on to the end of the last packet, which a rate converter hears ahead.
    for (unsigned int i = 0; i + 200 < std::min<std::size_t>(read, expected.size() / 2); ++i) {
        ASSERT_NEAR(left[i], static_cast<float>(expected[2 * i]) / 32768.0F, 0.0003F) << i;
        ASSERT_NEAR(right[i], static_cast<float>(expected[2 * i + 1]) / 32768.0F, 0.0003F) << i;
    }
    EXPECT_THAT(std::vector<float>(left.begin() + read, left.end()), Each(Untouched));
    // The same from somewhere within, and nothing at the end.
    std::vector<float> part(1000), other(1000);
    channels = {part.data(), other.data()};
    ASSERT_EQ(reader->FillAudioBuffer(50'001, 1000, channels), 1000U);
    EXPECT_TRUE(std::equal(part.begin(), part.end(), left.begin() + 50'001));
    EXPECT_EQ(reader->FillAudioBuffer(read, 1000, channels), 0U);
}

INSTANTIATE_TEST_SUITE_P(Tracks, RecordedTrack, testing::Range(0, 5));

TEST(BRECLibAudioMediaReader, WithoutATrackItGivesNothing) {
    BRECLibAudioMediaReader reader(boost::shared_ptr<BREC::MP4TrackReader>{});
    EXPECT_EQ(FramesOf(reader), 0U);
}

} // namespace
} // namespace Zanthe
