// The pictures of recordings, by their time.
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/brec/Reader.h"
#include "tests/support/FfmpegPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

using Track = boost::shared_ptr<BREC::MP4TrackReader>;

std::vector<Track> TracksOf(const std::string& path) {
    const auto format = BREC::AudioFormat::create16BitSignedInterleaved(44100, 2);
    const auto reader = BREC::Reader::create(path, format, nullptr);
    return reader != nullptr ? reader->tracks() : std::vector<Track>{};
}

struct Shown {
    bool shown = false;
    double time = -1.0;
    BgraPicture picture = {};
};

Shown ShownAt(BREC::MP4TrackReader& track, double seconds) {
    Shown answer;
    answer.picture = {static_cast<int>(track.width()), static_cast<int>(track.height()), {}};
    answer.picture.bits.assign(std::size_t{track.width()} * track.height() * 4, 0xEE);
    answer.shown = track.decodeFrameAtTime(seconds, answer.picture.bits.data(),
                                           static_cast<unsigned int>(answer.picture.bits.size()),
                                           &answer.time, -1.0, 0.0, 0.0);
    return answer;
}

bool IsUntouched(const BgraPicture& picture) {
    return picture.bits == std::vector<std::uint8_t>(picture.bits.size(), 0xEE);
}

struct Recording {
    const char* name;
    std::size_t track;
    const char* stream; // as ffmpeg counts it
};

class RecordedPictures : public testing::TestWithParam<Recording> {};

// Forty pictures, ten a second.
TEST_P(RecordedPictures, AreExactInAnyOrder) {
    const std::string path = MadeMedia(GetParam().name);
    const auto tracks = TracksOf(path);
    ASSERT_GT(tracks.size(), GetParam().track);
    BREC::MP4TrackReader& track = *tracks[GetParam().track];
    const auto expected = FfmpegPictures(path, static_cast<int>(track.width()),
                                         static_cast<int>(track.height()), GetParam().stream);
    ASSERT_EQ(expected.size(), 40U);
    std::vector<Shown> linear;
    for (int i = 0; i < 40; ++i) {
        linear.push_back(ShownAt(track, i / 10.0));
        const Shown& shown = linear.back();
        ASSERT_TRUE(shown.shown) << i;
        EXPECT_DOUBLE_EQ(shown.time, i / 10.0);
        EXPECT_GT(Psnr(shown.picture, expected[static_cast<std::size_t>(i)]), 38.0) << i;
        if (i > 0) {
            EXPECT_LT(Psnr(shown.picture, expected[static_cast<std::size_t>(i - 1)]), 30.0) << i;
        }
    }
    std::mt19937 random(20240301);
    for (int round = 0; round < 150; ++round) {
        const auto i = static_cast<std::size_t>(random() % 40);
        const double within = static_cast<double>(random() % 1000) / 10001.0;
        const Shown shown = ShownAt(track, static_cast<double>(i) / 10.0 + within);
        ASSERT_TRUE(shown.shown) << i;
        EXPECT_EQ(shown.time, linear[i].time) << i;
        ASSERT_EQ(shown.picture.bits, linear[i].picture.bits) << i;
    }
    for (std::size_t i = 40; i-- > 0;) {
        ASSERT_EQ(ShownAt(track, linear[i].time).picture.bits, linear[i].picture.bits) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Tracks, RecordedPictures,
                         testing::Values(Recording{"rec-tracks.brec", 0, "0:v:0"},
                                         Recording{"rec-tracks.brec", 2, "0:v:1"},
                                         Recording{"rec-tracks.brec", 4, "0:v:2"},
                                         Recording{"rec-fragmented.brec", 0, "0:v:0"},
                                         Recording{"rec-hevc.brec", 0, "0:v:0"}),
                         [](const auto& row) {
                             std::string name = row.param.name;
                             name = name.substr(4, name.find('.') - 4);
                             return name + std::to_string(row.param.track);
                         });

class OnePictureTrack : public testing::Test {
protected:
    Track m_track = TracksOf(MadeMedia("rec-tracks.brec")).at(0);
};

TEST_F(OnePictureTrack, PixelsAreOpaque) {
    const Shown shown = ShownAt(*m_track, 0.0);
    for (std::size_t i = 3; i < shown.picture.bits.size(); i += 4) {
        ASSERT_EQ(shown.picture.bits[i], 255);
    }
}

TEST_F(OnePictureTrack, OutsideThereIsNone) {
    for (const double seconds :
         {-0.001, -1.0, 4.0, 4.001, 1e9, 1e300, std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), std::nan("")}) {
        const Shown shown = ShownAt(*m_track, seconds);
        EXPECT_FALSE(shown.shown) << seconds;
        EXPECT_EQ(shown.time, -1.0) << seconds;
        EXPECT_TRUE(IsUntouched(shown.picture)) << seconds;
    }
    EXPECT_TRUE(ShownAt(*m_track, 3.9999).shown);
}

// What a double makes of a picture's begin may be a little less than that.
TEST_F(OnePictureTrack, AHairBelowAPicturesBeginIsItsBegin) {
    EXPECT_DOUBLE_EQ(ShownAt(*m_track, std::nextafter(0.7, 0.0)).time, 0.7);
    EXPECT_DOUBLE_EQ(ShownAt(*m_track, 0.7 - 1e-6).time, 0.6);
}

TEST_F(OnePictureTrack, ATimeThatItToldShowsThePictureAgain) {
    for (double seconds = 0.05; seconds < 4.0; seconds += 0.137) {
        const Shown first = ShownAt(*m_track, seconds);
        const Shown again = ShownAt(*m_track, first.time);
        EXPECT_EQ(again.time, first.time);
        EXPECT_EQ(again.picture.bits, first.picture.bits);
    }
}

TEST_F(OnePictureTrack, ABufferThatIsTooSmallIsLeftAlone) {
    std::vector<unsigned char> buffer(64 * 48 * 4, 0xEE);
    double time = -1.0;
    for (const unsigned int size : {0U, 1U, 64U * 48 * 4 - 1}) {
        EXPECT_FALSE(m_track->decodeFrameAtTime(0.0, buffer.data(), size, &time, -1.0, 0.0, 0.0));
    }
    EXPECT_EQ(buffer, std::vector<unsigned char>(64 * 48 * 4, 0xEE));
    EXPECT_EQ(time, -1.0);
}

// Whoever asks may have cleared the buffer since.
TEST_F(OnePictureTrack, TheSamePictureIsWrittenAgain) {
    const Shown first = ShownAt(*m_track, 1.0);
    std::vector<unsigned char> buffer(64 * 48 * 4, 0xEE);
    double time = -1.0;
    ASSERT_TRUE(
        m_track->decodeFrameAtTime(1.0, buffer.data(), 64 * 48 * 4, &time, first.time, 0.0, 0.0));
    EXPECT_EQ(buffer, first.picture.bits);
    EXPECT_EQ(time, first.time);
}

TEST_F(OnePictureTrack, SoundHasNoPictures) {
    const auto sound = TracksOf(MadeMedia("rec-tracks.brec")).at(1);
    const Shown shown = ShownAt(*sound, 0.0);
    EXPECT_FALSE(shown.shown);
}

// Pictures of another size than the track tells come in the track's.
TEST(PictureTrack, OtherSizesAreScaled) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("h264/size-change.mp4"));
    const auto tracks = TracksOf(folder.Write("a.brec", bytes));
    ASSERT_FALSE(tracks.empty());
    const std::uint32_t width = tracks[0]->width();
    const Shown first = ShownAt(*tracks[0], 0.0);
    const Shown late = ShownAt(*tracks[0], 3.5);
    ASSERT_TRUE(first.shown);
    ASSERT_TRUE(late.shown);
    EXPECT_EQ(late.picture.width, static_cast<int>(width));
    EXPECT_NE(std::vector<std::uint8_t>(late.picture.bits.end() - 400, late.picture.bits.end()),
              std::vector<std::uint8_t>(400, 0xEE));
}

TEST(PictureTrack, AFileThatIsCutAnywhereGivesPicturesOrNone) {
    const TemporaryFolder folder;
    const std::string whole = ReadWholeFile(MadeMedia("rec-fragmented.brec"));
    std::size_t pictures = 0;
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 50) {
        for (const Track& track : TracksOf(folder.Write("cut.brec", whole.substr(0, size)))) {
            for (const double seconds : {0.0, 3.9, 1.5}) {
                const Shown shown = ShownAt(*track, seconds);
                EXPECT_EQ(shown.shown, shown.time >= 0.0);
                pictures += shown.shown ? 1 : 0;
            }
        }
    }
    EXPECT_GT(pictures, 10U);
}

TEST(PictureTrack, AFileThatIsGoneGivesNone) {
    Track track;
    {
        const TemporaryFolder folder;
        track = TracksOf(folder.Write("a.brec", ReadWholeFile(MadeMedia("rec-hevc.brec")))).at(0);
    }
    EXPECT_FALSE(ShownAt(*track, 0.0).shown);
    EXPECT_EQ(track->lengthInFrames(), 40U);
}

} // namespace
