// Whatever happens to a file, a reader answers with sound or with one of its own failures.
#include <dirent.h>

#include <cstdint>
#include <memory>
#include <random>
#include <set>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/StereoSound.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

namespace Zanthe {
namespace {

bool IsOwnFailure(const std::string& text) {
    static const std::set<std::string> kTexts = {
        "PacketReader() - m_formatContext->openInput failed",
        "PacketReader() - m_formatContext->findStreamInfo failed",
        "PacketReader() - No audio stream exists",
        "Decoder() - couldn't find codec",
        "Decoder() - receiveParameters failed",
        "Decoder() - open failed",
        "Error sending packet",
        "too many samples passed into ResamplerImpl::resample()"};
    return kTexts.count(text) != 0 ||
           text.rfind("Decoder::decodeToFrame - Unexpected error: ", 0) == 0;
}

// Opens and reads here and there; answers whether any sound came.
bool ReadAbout(const std::string& path) {
    try {
        const auto reader = FFMPEGAudioReader::Create(path, -1, 32000);
        bool any = false;
        for (const std::int64_t start : {0, 30000, 5000}) {
            any = ReadSpan(*reader, start, 4001).Frames() > 0 || any;
        }
        return any;
    } catch (const std::runtime_error& failure) {
        EXPECT_TRUE(IsOwnFailure(failure.what())) << failure.what();
        return false;
    }
}

int OpenDescriptors() {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
    int count = 0;
    while (readdir(folder.get()) != nullptr) {
        ++count;
    }
    return count;
}

TEST(DamagedMp3, CutAtAnyByteOfItsBeginning) {
    const TemporaryFolder folder;
    const std::string whole = ReadWholeFile(MadeMedia("tone-44100-stereo-id3-cover.mp3"));
    int served = 0;
    for (std::size_t bytes = 0; bytes < 4000; bytes += 1 + bytes / 100) {
        served += ReadAbout(folder.Write("cut.mp3", whole.substr(0, bytes))) ? 1 : 0;
    }
    EXPECT_GT(served, 10);
}

TEST(DamagedMp3, CutAnywhereFurtherOn) {
    const TemporaryFolder folder;
    const std::string whole = ReadWholeFile(MadeMedia("tone-22050-stereo-vbr.mp3"));
    for (std::size_t bytes = 4000; bytes < whole.size(); bytes += 1777) {
        EXPECT_TRUE(ReadAbout(folder.Write("cut.mp3", whole.substr(0, bytes))) || bytes < 20000);
    }
}

TEST(DamagedMp3, FlippedBytes) {
    const TemporaryFolder folder;
    const std::string whole =
        ReadWholeFile(MadeMedia("tone-44100-stereo-vbr.mp3")).substr(0, 60000);
    std::mt19937 random(3);
    for (int round = 0; round < 150; ++round) {
        std::string damaged = whole;
        for (int flips = 0; flips < 1 + round / 10; ++flips) {
            // Every other flip in the header of the file, where the structure is.
            const std::size_t at = random() % (flips % 2 == 0 ? 500 : damaged.size());
            damaged[at] = static_cast<char>(random());
        }
        ReadAbout(folder.Write("flipped.mp3", damaged));
    }
}

TEST(DamagedMp3, AHoleInTheMiddleFailsTheReadsOverItAndNoOthers) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("tone-44100-stereo-cbr-noxing.mp3"));
    bytes.replace(60000, 3000, 3000, '\x55');
    const auto reader = FFMPEGAudioReader::Create(folder.Write("hole.mp3", bytes), -1, 44100);
    const auto sound =
        FFMPEGAudioReader::Create(MadeMedia("tone-44100-stereo-cbr-noxing.mp3"), -1, 44100);
    const StereoSound before = ReadSpan(*sound, 20000, 9999);
    EXPECT_TRUE(ReadSpan(*reader, 20000, 9999) == before);
    EXPECT_THROW(ReadSpan(*reader, 0, 250000), std::runtime_error);
    EXPECT_TRUE(ReadSpan(*reader, 20000, 9999) == before);
}

TEST(DamagedMp3, RealDamagedFilesOfAllKinds) {
    for (const auto& file : RealMedia("damaged")) {
        SCOPED_TRACE(file.string());
        ReadAbout(file.string());
    }
}

TEST(FFMPEGAudioReader, AThousandReadersLeaveNoFileOpen) {
    const TemporaryFolder folder;
    const std::string good = MadeMedia("tone-8000-mono-cbr.mp3");
    const std::string bad = folder.Write("bad.mp3", "no music");
    const std::string flac = folder / "flac.mp3";
    ASSERT_EQ(std::system(
                  ("ffmpeg -nostdin -v error -f lavfi -i sine=d=1 -f flac '" + flac + "'").c_str()),
              0);
    const int before = OpenDescriptors();
    for (int i = 0; i < 1000; ++i) {
        const auto reader = FFMPEGAudioReader::Create(good, -1, 44100);
        EXPECT_THROW(FFMPEGAudioReader::Create(bad, -1, 44100), std::runtime_error);
        if (i % 20 == 0) {
            EXPECT_EQ(ReadSpan(*reader, 5000, 100).Frames(), 100U);
            EXPECT_THROW(FFMPEGAudioReader::Create(flac, -1, 44100), std::runtime_error);
        }
    }
    EXPECT_EQ(OpenDescriptors(), before);
}

} // namespace
} // namespace Zanthe
