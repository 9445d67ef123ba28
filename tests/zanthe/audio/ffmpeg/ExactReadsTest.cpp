// A frame number gives the same sample whatever was read before: every made MP3, and every real one
// that can be decoded, at usual rates and an awkward one.
#include <iostream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/ExactReads.h"
#include "tests/support/StereoSound.h"
#include "tests/support/TestMedia.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

namespace Zanthe {
namespace {

constexpr int kRates[] = {44100, 48000, 32000, 22050, 16000, 16001};

std::vector<std::string> MadeFiles() {
    std::vector<std::string> files = {
        "tone-44100-stereo-cbr128.mp3",    "tone-44100-stereo-joint-off.mp3",
        "tone-44100-stereo-id3-cover.mp3", "tone-44100-stereo-low-large-cover.mp3",
        "pauses-44100-mono-vbr.mp3",       "pauses-44100-stereo-vbr.mp3",
        "pauses-22050-mono-vbr.mp3"};
    for (const char* rate : {"8000", "16000", "22050", "32000", "44100", "48000"}) {
        for (const char* channels : {"mono", "stereo"}) {
            for (const char* coding :
                 {"cbr", "cbr-low", "vbr", "vbr-low", "cbr-noxing", "vbr-noxing"}) {
                files.push_back(std::string("tone-") + rate + "-" + channels + "-" + coding +
                                ".mp3");
            }
        }
    }
    return files;
}

void ExpectExact(const std::string& path, int rate, int reads) {
    SCOPED_TRACE(path + " at " + std::to_string(rate));
    const StereoSound whole = ReadWhole(*FFMPEGAudioReader::Create(path, -1, rate));
    const auto reader = FFMPEGAudioReader::Create(path, -1, rate);
    ExpectRandomReadsEqual(*reader, whole, reads);
}

class MadeMp3 : public testing::TestWithParam<std::string> {};

TEST_P(MadeMp3, RandomReadsEqualTheLinearRead) {
    for (const int rate : kRates) {
        ExpectExact(MadeMedia(GetParam()), rate, 10);
    }
}

TEST_P(MadeMp3, OddChunksMakeTheWhole) {
    for (const int rate : {44100, 16001}) {
        const auto reader = FFMPEGAudioReader::Create(MadeMedia(GetParam()), -1, rate);
        const StereoSound whole = ReadWhole(*reader);
        EXPECT_GT(whole.Frames(), 5U * static_cast<std::size_t>(rate));
        ExpectOddChunksMakeTheWhole(*reader, whole);
    }
}

// The length of what the ffmpeg program does not show: the encoder's delay.
std::size_t Delay(const std::string& name) {
    return name.find("noxing") == std::string::npos ? 1105 : 0;
}

int OwnRate(const std::string& name) {
    return std::stoi(name.substr(name.find('-') + 1));
}

TEST_P(MadeMp3, SamplesAreThoseOfTheFFmpegProgramBehindTheDelay) {
    const std::string path = MadeMedia(GetParam());
    const auto reader = FFMPEGAudioReader::Create(path, -1, OwnRate(GetParam()));
    const StereoSound whole = ReadWhole(*reader);
    const StereoSound expected = DecodeWithFFmpegProgram(path);
    const std::size_t delay = Delay(GetParam());
    EXPECT_EQ(whole.Frames(), delay + expected.Frames());
    EXPECT_TRUE(whole.Slice(0, delay) ==
                (StereoSound{std::vector<float>(delay), std::vector<float>(delay)}));
    EXPECT_TRUE(whole.Slice(delay, expected.Frames()) == expected);
}

INSTANTIATE_TEST_SUITE_P(Files, MadeMp3, testing::ValuesIn(MadeFiles()),
                         [](const auto& test) { return TestNameOf(test.param); });

// Streams that leave the standard, where no read can equal another; docs/sound.md says why.
bool IsKnownToVary(const std::string& name) {
    return name == "minimp3__l3-nonstandard-he_44_48khz.bit" ||
           name == "minimp3__l2-nonstandard-test32-size.bit";
}

TEST(RealMp3, RandomReadsEqualTheLinearRead) {
    const auto files = RealMedia("mp3");
    if (files.empty()) {
        std::cout << "the collection of real media is not here\n";
    }
    int exact = 0;
    int refused = 0;
    for (const auto& file : files) {
        if (IsKnownToVary(file.filename().string())) {
            continue;
        }
        try {
            for (const int rate : {44100, 16001}) {
                ExpectExact(file.string(), rate, 10);
            }
            ++exact;
        } catch (const std::runtime_error&) {
            ++refused; // no media, or damaged within
        }
    }
    std::cout << exact << " files exact, " << refused << " refused\n";
    EXPECT_TRUE(files.empty() || exact > 50);
}

} // namespace
} // namespace Zanthe
