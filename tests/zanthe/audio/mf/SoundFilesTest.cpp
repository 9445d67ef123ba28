// Whole files through the factory, as hosts read them: in any order, at any rate, at the right
// place.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <iostream>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <gtest/gtest.h>

#include "platform/win32/Version.h"
#include "tests/support/ExactReads.h"
#include "tests/support/StereoSound.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/AudioMediaReaderFactory.h"
#include "zanthe/audio/AudioRoute.h"
#include "zanthe/audio/mf/LegacyMFAudioReader.h"
#include "zanthe/audio/mf/MFAudioReaderWin7.h"
#include "zanthe/core/TextException.h"

namespace Zanthe {
namespace {

struct SoundFile {
    const char* name;
    int rate; // its own
    bool isLossless = false;
    const char* folder = "sound";
    double seconds = 12.345;
};

void PrintTo(const SoundFile& file, std::ostream* out) {
    *out << file.name;
}

boost::shared_ptr<IAudioReader> Open(const std::string& path, int rate, bool recontainer = false) {
    return AudioMediaReaderFactory(path, 0, rate).Create_AudioMediaReader(recontainer);
}

std::string PathOf(const SoundFile& file) {
    return MadeMedia(std::string(file.folder) + '/' + file.name);
}

// How much the two differ over `count` frames when one is moved by `lag`.
double DifferenceAt(const std::vector<float>& a, const std::vector<float>& b, std::size_t from,
                    std::size_t count, int lag) {
    double sum = 0;
    for (std::size_t i = from; i < from + count; ++i) {
        const std::int64_t moved = static_cast<std::int64_t>(i) + lag;
        sum += std::abs(a[i] - b[static_cast<std::size_t>(moved)]);
    }
    return sum;
}

// By how many frames the second is to be moved to match the first around `from`.
int LagAround(const std::vector<float>& a, const std::vector<float>& b, std::size_t from) {
    constexpr std::size_t count = 3000;
    constexpr int farthest = 80;
    int best = -farthest;
    for (int lag = -farthest; lag <= farthest; ++lag) {
        if (DifferenceAt(a, b, from, count, lag) < DifferenceAt(a, b, from, count, best)) {
            best = lag;
        }
    }
    return best;
}

class SoundFiles : public testing::TestWithParam<SoundFile> {};

TEST_P(SoundFiles, RandomReadsEqualTheLinearRead) {
    for (const int rate : {44100, 48000, 32000, 16000, 16001}) {
        SCOPED_TRACE(rate);
        const StereoSound whole = ReadWhole(*Open(PathOf(GetParam()), rate));
        EXPECT_NEAR(static_cast<double>(whole.Frames()), GetParam().seconds * rate, 0.2 * rate);
        ExpectRandomReadsEqual(*Open(PathOf(GetParam()), rate), whole, 25);
    }
}

TEST_P(SoundFiles, OddChunksMakeTheWhole) {
    const auto reader = Open(PathOf(GetParam()), 44100);
    const StereoSound whole = ReadWhole(*reader);
    ExpectOddChunksMakeTheWhole(*reader, whole);
}

// What codecs fill in by chance differs from run to run, and the program keeps the padding at the
// end of some files.
TEST_P(SoundFiles, StandsWhereTheFFmpegProgramHasIt) {
    const StereoSound whole = ReadWhole(*Open(PathOf(GetParam()), GetParam().rate));
    const StereoSound expected = DecodeWithFFmpegProgram(PathOf(GetParam()));
    ASSERT_LE(whole.Frames(), expected.Frames());
    EXPECT_LT(expected.Frames() - whole.Frames(), 2000U);
    if (GetParam().isLossless) {
        EXPECT_TRUE(whole == expected);
        return;
    }
    for (const std::size_t from : {std::size_t{100}, whole.Frames() / 2, whole.Frames() - 4000}) {
        EXPECT_EQ(LagAround(whole.left, expected.left, from), 0) << from;
        EXPECT_EQ(LagAround(whole.right, expected.right, from), 0) << from;
    }
}

std::string NameOf(const testing::TestParamInfo<SoundFile>& file) {
    std::string name = file.param.name;
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
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
    NameOf);

constexpr const char* Exact = "sound-exact";

// More ways of holding samples and more channels; sound that begins late, ends behind the pictures
// or before them, and begins and ends within packets.
INSTANTIATE_TEST_SUITE_P(
    Exact, SoundFiles,
    testing::Values(SoundFile{"pcm-32.wav", 48000, true, Exact, 9.5},
                    SoundFile{"pcm-double.wav", 44100, false, Exact, 9.5},
                    SoundFile{"pcm-extensible-6.wav", 48000, false, Exact, 9.5},
                    SoundFile{"pcm-extensible-8.wav", 48000, false, Exact, 9.5},
                    SoundFile{"aac-6.m4a", 48000, false, Exact, 9.5},
                    SoundFile{"aac-doubled.m4a", 44100, false, Exact, 9.5},
                    SoundFile{"sound-late.mp4", 48000, false, Exact, 5.25},
                    SoundFile{"sound-late.m2ts", 48000, false, Exact, 5.25},
                    SoundFile{"sound-longer.mp4", 48000, false, Exact, 5.25},
                    SoundFile{"sound-shorter.mp4", 48000, false, Exact, 5.25},
                    SoundFile{"edit-inside.m4a", 44100, false, Exact, 4.321},
                    SoundFile{"edit-inside-alac.m4a", 44100, false, Exact, 3.333}),
    NameOf);

class RecontainedFiles : public testing::TestWithParam<const char*> {};

TEST_P(RecontainedFiles, TheCopySoundsAsTheFileDoes) {
    const std::string path = MadeMedia(GetParam());
    const StereoSound direct = ReadWhole(*Open(path, 44100));
    EXPECT_GT(direct.Frames(), 5U * 44100);
    const auto copied = Open(path, 44100, true);
    EXPECT_TRUE(ReadWhole(*copied) == direct);
    ExpectRandomReadsEqual(*copied, direct, 25);
}

INSTANTIATE_TEST_SUITE_P(Made, RecontainedFiles,
                         testing::Values("sound/aac-film.mp4", "sound/aac-fragmented.mp4",
                                         "sound-exact/sound-late.mp4",
                                         "sound-exact/sound-longer.mp4"),
                         [](const auto& file) { return TestNameOf(file.param); });

// Every real file that the factory sends to Media Foundation.
TEST(SoundFilesAtHand, RandomReadsEqualTheLinearRead) {
    constexpr unsigned int most = 60 * 44100; // frames; longer ones are compared up to there
    int exact = 0;
    int refused = 0;
    for (const char* folder : {"asf", "mp4_audio", "wav", "mpeg"}) {
        for (const auto& file : RealMedia(folder)) {
            SCOPED_TRACE(file.filename().string());
            if (ChooseAudioRoute(file.string(), boost::make_shared<WindowsVersionProvider>()) !=
                AudioRoute::MediaFoundation) {
                continue;
            }
            try {
                const StereoSound whole = ReadSpan(*Open(file.string(), 44100), 0, most);
                if (whole.Frames() < most) {
                    const auto reader = Open(file.string(), 44100);
                    ExpectRandomReadsEqual(*reader, whole, 12);
                    const std::int64_t last = static_cast<std::int64_t>(whole.Frames()) - 1;
                    EXPECT_EQ(last < 0 || ReadSpan(*reader, last, 9).Frames() == 1, true);
                }
                ++exact;
            } catch (const TextException&) {
                ++refused; // no media, or in a codec that nothing decodes
            }
        }
    }
    std::cout << exact << " files read, " << refused << " refused\n";
    EXPECT_TRUE(RealMedia("wav").empty() || exact > 40);
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
    EXPECT_TRUE(joined == whole.Slice(0, std::size_t{20} * 4321));
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
