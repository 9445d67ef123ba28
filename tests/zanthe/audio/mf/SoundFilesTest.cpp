// Whole files through the factory, as hosts read them: in any order, at any rate, at the right
// place.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <iostream>

#include <boost/shared_ptr.hpp>
#include <gtest/gtest.h>

#include "platform/win32/Version.h"
#include "tests/support/ExactReads.h"
#include "tests/support/StereoSound.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/audio/mf/LegacyMFAudioReader.h"
#include "zanthe/audio/mf/MFAudioReader.h"
#include "zanthe/audio/mf/MFAudioReaderWin7.h"

namespace Zanthe {
namespace {

struct SoundFile {
    const char* name;
    int rate; // its own
    bool isLossless = false;
};

void PrintTo(const SoundFile& file, std::ostream* out) {
    *out << file.name;
}

boost::shared_ptr<IAudioReader> Open(const std::string& path, int rate, bool recontainer = false) {
    return AudioMediaReaderFactory(path, 0, rate).Create_AudioMediaReader(recontainer);
}

std::string PathOf(const SoundFile& file) {
    return MadeMedia(std::string("sound/") + file.name);
}

double LargestDifference(const std::vector<float>& a, const std::vector<float>& b) {
    double largest = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        largest = std::max(largest, std::abs(static_cast<double>(a[i]) - b[i]));
    }
    return largest;
}

class SoundFiles : public testing::TestWithParam<SoundFile> {};

TEST_P(SoundFiles, RandomReadsEqualTheLinearRead) {
    for (const int rate : {44100, 48000, 32000, 16000, 16001}) {
        SCOPED_TRACE(rate);
        const StereoSound whole = ReadWhole(*Open(PathOf(GetParam()), rate));
        EXPECT_NEAR(static_cast<double>(whole.Frames()), 12.345 * rate, 0.2 * rate);
        ExpectRandomReadsEqual(*Open(PathOf(GetParam()), rate), whole, 25);
    }
}

TEST_P(SoundFiles, OddChunksMakeTheWhole) {
    const auto reader = Open(PathOf(GetParam()), 44100);
    const StereoSound whole = ReadWhole(*reader);
    ExpectOddChunksMakeTheWhole(*reader, whole);
}

TEST_P(SoundFiles, StandsWhereTheFFmpegProgramHasIt) {
    const StereoSound whole = ReadWhole(*Open(PathOf(GetParam()), GetParam().rate));
    const StereoSound expected = DecodeWithFFmpegProgram(PathOf(GetParam()));
    EXPECT_EQ(whole.Frames(), expected.Frames());
    // A frame off would be a difference of a tenth at the least.
    const double most = GetParam().isLossless ? 0 : 1e-3;
    EXPECT_LE(LargestDifference(whole.left, expected.left), most);
    EXPECT_LE(LargestDifference(whole.right, expected.right), most);
}

INSTANTIATE_TEST_SUITE_P(
    Made, SoundFiles,
    testing::Values(SoundFile{"pcm-44100.wav", 44100, true},
                    SoundFile{"pcm-48000-24.wav", 48000, true},
                    SoundFile{"pcm-32000-float.wav", 32000, true},
                    SoundFile{"pcm-11025-mono-8.wav", 11025}, SoundFile{"aac-44100.m4a", 44100},
                    SoundFile{"aac-48000-mono.m4a", 48000}, SoundFile{"aac-16000.m4a", 16000},
                    SoundFile{"alac-44100.m4a", 44100, true}, SoundFile{"aac-film.mp4", 48000},
                    SoundFile{"aac-fragmented.mp4", 44100}, SoundFile{"ac3-film.mp4", 48000},
                    SoundFile{"mp3-film.mp4", 44100}, SoundFile{"pcm-film.mov", 48000, true},
                    SoundFile{"aac-film.mov", 44100}, SoundFile{"wma1-32000.wma", 32000},
                    SoundFile{"wma2-44100.wma", 44100}, SoundFile{"wma2-film.wmv", 44100},
                    SoundFile{"ac3-film.mts", 48000}, SoundFile{"aac-film.m2ts", 48000}),
    [](const auto& file) {
        std::string name = file.param.name;
        std::replace_if(
            name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
        return name;
    });

class RecontainedFiles : public testing::TestWithParam<const char*> {};

TEST_P(RecontainedFiles, TheCopySoundsAsTheFileDoes) {
    const std::string path = MadeMedia(std::string("sound/") + GetParam());
    const auto direct = Open(path, 44100);
    const auto copied = Open(path, 44100, true);
    const StereoSound whole = ReadWhole(*copied);
    EXPECT_GT(whole.Frames(), 12U * 44100);
    EXPECT_TRUE(whole == ReadWhole(*direct));
    ExpectRandomReadsEqual(*copied, whole, 25);
}

INSTANTIATE_TEST_SUITE_P(Made, RecontainedFiles,
                         testing::Values("aac-film.mp4", "aac-fragmented.mp4"),
                         [](const auto& file) { return TestNameOf(file.param); });

// Everything that the sound of a kind of file may meet.
TEST(SoundFilesAtHand, RandomReadsEqualTheLinearRead) {
    constexpr unsigned int most = 60 * 44100; // frames of a file that are compared
    int exact = 0;
    int refused = 0;
    for (const char* folder : {"asf", "mp4_audio", "wav", "mpeg"}) {
        for (const auto& file : RealMedia(folder)) {
            SCOPED_TRACE(file.filename().string());
            MFAudioReader linear(file.string());
            MFAudioReader shuffled(file.string());
            if (!linear.Initialize(44100) || !shuffled.Initialize(44100)) {
                ++refused;
                continue;
            }
            const StereoSound whole = ReadSpan(linear, 0, most);
            if (whole.Frames() < most) {
                ExpectRandomReadsEqual(shuffled, whole, 12);
            }
            ++exact;
        }
    }
    std::cout << exact << " files read, " << refused << " refused\n";
}

TEST(LegacyFiles, ReadsWhatTheCurrentReaderReads) {
    for (const char* name : {"pcm-44100.wav", "aac-film.mp4", "wma2-44100.wma"}) {
        const std::string path = MadeMedia(std::string("sound/") + name);
        const StereoSound whole = ReadWhole(*Open(path, 44100));
        LegacyMFAudioReader reader(std::wstring(path.begin(), path.end()), false);
        ASSERT_EQ(reader.Initialize(), S_OK);
        ExpectRandomReadsEqual(reader, whole, 25);
        EXPECT_EQ(reader.NumReseeks(), 0) << name;
        EXPECT_EQ(reader.NumTimeAdjusts(), 0) << name;
    }
}

// At the canonical rate the resampler only turns integers into floats.
TEST(OlderSystemFiles, TheirReadersGoThroughTheResampler) {
    const std::string path = MadeMedia("sound/pcm-44100.wav");
    const StereoSound whole = ReadWhole(*Open(path, 44100));
    MFAudioReaderWin7 reader(path);
    ASSERT_TRUE(reader.Initialize(0));
    StereoSound joined;
    for (int i = 0; i < 20; ++i) {
        joined.Append(ReadSpan(reader, static_cast<std::int64_t>(joined.Frames()), 4321));
    }
    EXPECT_TRUE(joined == whole.Slice(0, 20U * 4321));
    EXPECT_TRUE(ReadSpan(reader, 300'000, 5000) == whole.Slice(300'000, 5000));
    EXPECT_TRUE(ReadSpan(reader, 100'000, 5000) == whole.Slice(100'000, 5000));
}

TEST(OlderSystemFiles, TheFactoryBuildsTheLegacyReaderThere) {
    const std::string path = MadeMedia("sound/pcm-44100.wav");
    const StereoSound whole = ReadWhole(*Open(path, 44100));
    win32::SetSystemVersion({6, 1, 0});
    const auto reader = Open(path, 48000); // which has no say there
    const StereoSound start = ReadSpan(*reader, 0, 50'000);
    win32::SetSystemVersion({});
    EXPECT_TRUE(start == whole.Slice(0, 50'000));
}

} // namespace
} // namespace Zanthe
