// Files that lie or are damaged: reading ends, gives no more than it may, and takes no memory for
// what is not there.
#include <random>

#include <gtest/gtest.h>

#include "platform/av/SoundStream.h"
#include "tests/platform/av/SoundFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

// Reads here and there; answers how many frames came.
std::size_t ReadAbout(const std::string& path) {
    const auto stream = av::SoundStream::Open(path, 0);
    if (stream == nullptr) {
        return 0;
    }
    std::size_t frames = 0;
    constexpr std::int64_t kMost = 2'000'000;
    for (const std::int64_t from : {0LL, 300'000LL, 100'000LL, 1LL << 40, 250'000LL, -1LL}) {
        stream->Seek(from);
        av::SoundPiece piece;
        for (std::int64_t read = 0; read < kMost && stream->Read(piece) == av::SoundRead::Piece;
             read += piece.frames) {
            EXPECT_GT(piece.frames, 0);
            frames += static_cast<std::size_t>(piece.frames);
        }
    }
    return frames;
}

class DamagedSound : public testing::TestWithParam<const char*> {
protected:
    const std::string m_whole = ReadWholeFile(MadeMedia(std::string("sound-exact/") + GetParam()));
    const TemporaryFolder m_folder;
};

TEST_P(DamagedSound, CutFilesEnd) {
    for (int part = 1; part < 8; ++part) {
        ReadAbout(m_folder.Write(std::string("cut-") + GetParam(),
                                 m_whole.substr(0, m_whole.size() * part / 8)));
    }
}

TEST_P(DamagedSound, FlippedBytesEnd) {
    std::mt19937 random(3);
    for (int i = 0; i < 12; ++i) {
        std::string damaged = m_whole;
        for (int flip = 0; flip < 40; ++flip) {
            // The first of them in the headers.
            const std::size_t within =
                flip < 10 ? std::min<std::size_t>(damaged.size(), 2000) : damaged.size();
            damaged[random() % within] = static_cast<char>(random());
        }
        ReadAbout(m_folder.Write(std::string("flipped-") + GetParam(), damaged));
    }
}

TEST_P(DamagedSound, LostPiecesEnd) {
    for (int part = 1; part < 6; ++part) {
        std::string damaged = m_whole;
        damaged.erase(damaged.size() * part / 7, damaged.size() / 9);
        ReadAbout(m_folder.Write(std::string("lost-") + GetParam(), damaged));
    }
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedSound,
                         testing::Values("pcm-24.wav", "aac-stereo.m4a", "aac-fragments.mp4",
                                         "alac-16.m4a", "mp3-44100.mp4", "wma2.wma",
                                         "aac-44100.m2ts", "ac3.m2ts", "adpcm-ms.wav", "mp2.mpg",
                                         "aac.aac", "vorbis.ogg"),
                         [](const auto& test) { return "File" + std::to_string(test.index); });

// The stream goes on behind what is lost, in its place; what is lost is silence.
TEST(LostPackets, LeaveSilenceAndTheRestInItsPlace) {
    const std::string path = MadeMedia("sound-exact/ac3.m2ts");
    const auto whole = ReadFrames(*av::SoundStream::Open(path, 0), 0, kAll);
    std::string damaged = ReadWholeFile(path);
    constexpr std::size_t kPacket = 192;
    const std::size_t start = damaged.size() / 2 / kPacket * kPacket;
    damaged.erase(start, 60 * kPacket);
    const TemporaryFolder folder;
    const auto stream = av::SoundStream::Open(folder.Write("lost.m2ts", damaged), 0);
    ASSERT_NE(stream, nullptr);
    const auto rest = ReadFrames(*stream, 0, kAll);
    EXPECT_EQ(rest.Count(), whole.Count());
    EXPECT_TRUE(rest.Slice(0, 100000) == whole.Slice(0, 100000));
    EXPECT_TRUE(rest.Slice(400000, 50000) == whole.Slice(400000, 50000));
    EXPECT_FALSE(rest == whole);
    EXPECT_TRUE(ReadFrames(*stream, 200000, 60000) == rest.Slice(200000, 60000));
}

// Nothing is laid out for the time between two stamps that lie ages apart.
TEST(FarStamps, AreNoSound) {
    const std::string path = MadeMedia("sound-exact/aac-fragments.mp4");
    std::string damaged = ReadWholeFile(path);
    // The decode time of the fourth fragment, of 64 bits.
    std::size_t at = 0;
    for (int i = 0; i < 4; ++i) {
        at = damaged.find("tfdt", at + 1);
        ASSERT_NE(at, std::string::npos);
    }
    damaged[at + 8] = 0x10;
    const TemporaryFolder folder;
    const auto stream = av::SoundStream::Open(folder.Write("far.mp4", damaged), 0);
    ASSERT_NE(stream, nullptr);
    EXPECT_LT(ReadFrames(*stream, 0, 100'000'000).Count(), 100'000'000U);
}

} // namespace
