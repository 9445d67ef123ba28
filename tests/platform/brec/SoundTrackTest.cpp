// The sound of recordings, frame by frame.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/av/WorkTotals.h"
#include "platform/brec/Reader.h"
#include "tests/support/FfmpegPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

using Track = boost::shared_ptr<BREC::MP4TrackReader>;
using Samples = std::vector<std::int16_t>;

std::vector<Track> TracksOf(const std::string& path, int rate = 44100, int channels = 2) {
    const auto format = BREC::AudioFormat::create16BitSignedInterleaved(rate, channels);
    const auto reader = BREC::Reader::create(path, format, nullptr);
    return reader != nullptr ? reader->tracks() : std::vector<Track>{};
}

constexpr std::int16_t Untouched = 0x7B7B;

// What the track gives of these frames; what it does not write must stay as it was.
Samples Read(BREC::MP4TrackReader& track, std::uint64_t start, unsigned int count,
             std::size_t channels = 2) {
    Samples samples((count + 16U) * channels, Untouched);
    const unsigned int frames =
        track.fillAudioBuffer(start, count, reinterpret_cast<unsigned char*>(samples.data()));
    EXPECT_LE(frames, count);
    for (std::size_t i = frames * channels; i < samples.size(); ++i) {
        EXPECT_EQ(samples[i], Untouched) << i;
    }
    samples.resize(frames * channels);
    return samples;
}

Samples ReadAll(BREC::MP4TrackReader& track, std::size_t channels = 2) {
    return Read(track, 0, 1'000'000, channels);
}

// Of one stream, as the ffmpeg program decodes and converts it.
Samples OfFfmpeg(const std::string& path, int stream, int rate = 44100, int channels = 2) {
    const std::string bytes = OutputOf(
        "ffmpeg -nostdin -v error -i '" + path + "' -map 0:" + std::to_string(stream) +
        " -f s16le -ar " + std::to_string(rate) + " -ac " + std::to_string(channels) + " -");
    Samples samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
    return samples;
}

// The greatest distance of two samples at the same place, up to a few hundred before the end of
// either: ffmpeg goes on to the end of the last packet, which a rate converter hears ahead.
int Distance(const Samples& a, const Samples& b) {
    constexpr std::size_t End = 400;
    int greatest = 0;
    for (std::size_t i = 0; i + End < std::min(a.size(), b.size()); ++i) {
        greatest = std::max(greatest, std::abs(a[i] - b[i]));
    }
    return greatest;
}

struct Recorded {
    std::size_t track;
    int distance; // in 16-bit steps, to what ffmpeg makes of it
};

class RecordedSound : public testing::TestWithParam<Recorded> {
protected:
    std::string m_path = MadeMedia("rec-sounds.brec");
    Track m_track = TracksOf(m_path).at(GetParam().track);
};

TEST_P(RecordedSound, IsThatOfFfmpeg) {
    const Samples whole = ReadAll(*m_track);
    const Samples expected = OfFfmpeg(m_path, static_cast<int>(GetParam().track));
    EXPECT_NEAR(static_cast<double>(whole.size()), 2 * 3 * 44100, 2 * 100);
    EXPECT_LE(whole.size() / 2, m_track->lengthInFrames());
    EXPECT_GE(whole.size() / 2 + 100, m_track->lengthInFrames());
    EXPECT_LE(Distance(whole, expected), GetParam().distance);
    // It is no silence that is compared, and a frame's shift would show.
    const Samples shifted(expected.begin() + 2, expected.end());
    EXPECT_GT(Distance(whole, shifted), 100);
}

TEST_P(RecordedSound, IsTheSameFromAnyFrameOn) {
    const Samples whole = ReadAll(*m_track);
    const auto frames = static_cast<std::uint32_t>(whole.size() / 2);
    std::mt19937 random(20240302);
    for (int i = 0; i < 60; ++i) {
        const std::uint32_t start = random() % frames;
        const std::uint32_t count = 1 + random() % (random() % 2 == 0 ? 50 : 20'000);
        const std::uint32_t end = std::min(frames, start + count);
        const Samples part = Read(*m_track, start, count);
        ASSERT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + 2 * start,
                               whole.begin() + 2 * end))
            << start << ' ' << count;
    }
}

TEST_P(RecordedSound, PiecesOfAnyLengthMakeTheWhole) {
    const Samples whole = ReadAll(*m_track);
    Samples pieces;
    for (unsigned int count = 1; pieces.size() < whole.size(); count = count * 7 % 4099 + 1) {
        const Samples piece = Read(*m_track, pieces.size() / 2, count);
        ASSERT_FALSE(piece.empty());
        pieces.insert(pieces.end(), piece.begin(), piece.end());
    }
    EXPECT_TRUE(pieces == whole);
}

INSTANTIATE_TEST_SUITE_P(Tracks, RecordedSound,
                         testing::Values(Recorded{0, 0}, Recorded{1, 2}, Recorded{2, 2},
                                         Recorded{3, 8}, Recorded{4, 2}),
                         [](const auto& row) { return std::to_string(row.param.track); });

TEST(SoundTrack, ComesInTheFormatAskedFor) {
    const std::string path = MadeMedia("rec-sounds.brec");
    const auto tracks = TracksOf(path, 48000, 1);
    EXPECT_EQ(tracks.at(0)->lengthInFrames(), 144000U);
    const Samples mono = ReadAll(*tracks.at(4), 1);
    EXPECT_EQ(mono.size(), 144000U);
    EXPECT_LE(Distance(mono, OfFfmpeg(path, 4, 48000, 1)), 2);
}

TEST(SoundTrack, AFormatThatIsNoneGivesNothing) {
    for (const auto& [rate, channels] : {std::pair(0, 2), std::pair(-1, 2), std::pair(44100, 0),
                                         std::pair(44100, -3), std::pair(44100, 100'000)}) {
        for (const Track& track : TracksOf(MadeMedia("rec-sounds.brec"), rate, channels)) {
            unsigned char byte = 7;
            EXPECT_EQ(track->fillAudioBuffer(0, 1, &byte), 0U);
            EXPECT_EQ(byte, 7);
        }
    }
}

TEST(SoundTrack, BehindTheEndThereIsNone) {
    const auto tracks = TracksOf(MadeMedia("rec-sounds.brec"));
    BREC::MP4TrackReader& track = *tracks.at(0);
    ASSERT_EQ(track.lengthInFrames(), 132300U);
    EXPECT_TRUE(Read(track, 132300, 1).empty());
    EXPECT_TRUE(Read(track, std::numeric_limits<std::uint64_t>::max(), 100).empty());
    EXPECT_TRUE(Read(track, std::uint64_t{1} << 63, 100).empty());
    EXPECT_EQ(Read(track, 132299, 100).size(), 2U);
    EXPECT_EQ(Read(track, 0, 1).size(), 2U);
    EXPECT_TRUE(Read(track, 0, 0).empty());
}

// Frame n is what sounds n / rate seconds into the recording, beside the picture shown then.
TEST(SoundTrack, BeforeALateBeginThereIsSilence) {
    const std::string path = MadeMedia("rec-late-sound.brec");
    const auto tracks = TracksOf(path);
    BREC::MP4TrackReader& track = *tracks.at(1);
    EXPECT_EQ(track.lengthInFrames(), 22050U + 132300);
    const Samples whole = ReadAll(track);
    ASSERT_EQ(whole.size(), 2U * (22050 + 132300));
    EXPECT_EQ(std::count(whole.begin(), whole.begin() + 2 * 22050, 0), 2 * 22050);
    const Samples sounding(whole.begin() + 2 * 22050, whole.end());
    EXPECT_EQ(Distance(sounding, OfFfmpeg(path, 1)), 0);
    const Samples across = Read(track, 22000, 100);
    EXPECT_TRUE(std::equal(across.begin(), across.end(), whole.begin() + 2 * 22000));
}

// An encoder's delay is no sound.
TEST(SoundTrack, FragmentsWithoutAnEditListBeginAtTheRecordingsBegin) {
    const std::string path = MadeMedia("rec-fragmented.brec");
    const auto tracks = TracksOf(path);
    EXPECT_EQ(tracks.at(1)->lengthInFrames(), 176400U);
    const Samples whole = ReadAll(*tracks.at(1));
    const Samples all = OfFfmpeg(path, 1); // the delay too
    ASSERT_EQ(whole.size(), 2U * 176400);
    EXPECT_LE(Distance(whole, Samples(all.begin() + 2 * 1024, all.end())), 2);
}

TEST(SoundTrack, PicturesHaveNoSound) {
    const auto tracks = TracksOf(MadeMedia("rec-tracks.brec"));
    EXPECT_TRUE(Read(*tracks.at(0), 0, 16).empty());
    EXPECT_FALSE(Read(*tracks.at(1), 0, 16).empty());
    EXPECT_FALSE(Read(*tracks.at(3), 0, 16).empty());
}

TEST(SoundTrack, ReadingOnDecodesNothingTwice) {
    const auto tracks = TracksOf(MadeMedia("rec-sounds.brec"));
    BREC::MP4TrackReader& track = *tracks.at(1);
    Read(track, 0, 1);
    const auto before = av::WorkTotals().packetsRead.load();
    for (std::uint64_t start = 1; start < 44100; start += 100) {
        Read(track, start, 100);
    }
    // A second of AAC is 47 packets of 1024 frames at 48000 Hz.
    EXPECT_LE(av::WorkTotals().packetsRead - before, 60);
}

TEST(SoundTrack, AFileThatIsCutAnywhereGivesWhatItHolds) {
    const TemporaryFolder folder;
    const std::string whole = ReadWholeFile(MadeMedia("rec-fragmented.brec"));
    std::size_t frames = 0;
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 50) {
        for (const Track& track : TracksOf(folder.Write("cut.brec", whole.substr(0, size)))) {
            frames += ReadAll(*track).size() / 2;
            frames += Read(*track, 100'000, 100).size() / 2;
        }
    }
    EXPECT_GT(frames, 44100U);
}

TEST(SoundTrack, AFileThatIsGoneGivesNothing) {
    Track track;
    {
        const TemporaryFolder folder;
        track = TracksOf(folder.Write("a.brec", ReadWholeFile(MadeMedia("rec-sounds.brec")))).at(0);
    }
    EXPECT_TRUE(Read(*track, 0, 10).empty());
    EXPECT_EQ(track->lengthInFrames(), 132300U);
}

} // namespace
