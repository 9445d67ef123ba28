#include "platform/av/ConvertedSound.h"

#include <random>
#include <tuple>

#include <gtest/gtest.h>

#include "tests/platform/av/SoundFiles.h"
#include "tests/support/TestMedia.h"

namespace {

constexpr unsigned int kSeed = 7;

struct Sound {
    std::unique_ptr<av::SoundStream> stream;
    std::unique_ptr<av::ConvertedSound> converted; // ends first
};

Sound Open(const std::string& name, const av::SoundFormat& to) {
    Sound sound;
    sound.stream = av::SoundStream::Open(MadeMedia("sound-exact/" + name), 0);
    EXPECT_NE(sound.stream, nullptr) << name;
    sound.converted = av::ConvertedSound::Create(*sound.stream, to);
    EXPECT_NE(sound.converted, nullptr) << name;
    return sound;
}

av::SoundFormat Stereo(int rate, AVSampleFormat sample = AV_SAMPLE_FMT_FLT) {
    return {sample, rate, 2, 0};
}

class Rates : public testing::TestWithParam<std::tuple<const char*, int>> {
protected:
    static Sound Open() { return ::Open(std::get<0>(GetParam()), Stereo(std::get<1>(GetParam()))); }
};

TEST_P(Rates, RandomReadsEqualTheLinearRead) {
    const Frames whole = ReadFrames(*Open().converted, 0, kAll);
    const Sound sound = Open();
    std::mt19937 random(kSeed);
    for (int i = 0; i < 20; ++i) {
        const std::size_t start = random() % (whole.Count() + 300);
        const std::size_t count = 1 + random() % (i % 3 == 0 ? 20000 : 2000);
        ASSERT_TRUE(ReadFrames(*sound.converted, static_cast<std::int64_t>(start),
                               static_cast<std::int64_t>(count)) == whole.Slice(start, count))
            << start << " + " << count;
    }
}

// What a conversion gives before the frame that it was begun for is still held, and not yet right.
TEST_P(Rates, AReadALittleBeforeTheLastOneIsTheSame) {
    const Sound sound = Open();
    const Frames whole = ReadFrames(*sound.converted, 0, kAll);
    for (std::size_t from = 7777; from + 100 < whole.Count(); from += 11'111) {
        for (const std::size_t back : {1, 3, 10, 40, 200}) {
            ReadFrames(*sound.converted, static_cast<std::int64_t>(from), 10);
            ASSERT_TRUE(ReadFrames(*sound.converted, static_cast<std::int64_t>(from - back), 10) ==
                        whole.Slice(from - back, 10))
                << from << " - " << back;
        }
    }
}

TEST_P(Rates, TheEndIsTheSameFromAnywhere) {
    const Sound sound = Open();
    const Frames whole = ReadFrames(*sound.converted, 0, kAll);
    for (const std::size_t before : {1, 7, 100, 5000}) {
        const std::size_t start = whole.Count() - before;
        ASSERT_TRUE(ReadFrames(*sound.converted, static_cast<std::int64_t>(start), kAll) ==
                    whole.Slice(start, before))
            << before;
    }
}

TEST_P(Rates, TheLengthIsThatOfTheSound) {
    const Sound sound = Open();
    const double seconds = static_cast<double>(ReadFrames(*sound.stream, 0, kAll).Count()) /
                           sound.stream->Facts().format.rate;
    const auto frames = static_cast<double>(ReadFrames(*sound.converted, 0, kAll).Count());
    EXPECT_NEAR(frames, seconds * std::get<1>(GetParam()), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Files, Rates,
    testing::Combine(testing::Values("aac-stereo.m4a", "pcm-24.wav", "wma2-22050.wma", "ac3.m2ts",
                                     "alac-6.m4a"),
                     testing::Values(44100, 48000, 32000, 22050, 8000, 96000, 16001)),
    [](const auto& test) {
        return "File" + std::to_string(test.index) + "At" + std::to_string(std::get<1>(test.param));
    });

// Packets of samples as they are begin wherever a read goes to, so that each read is cut otherwise.
TEST(ConvertedSound, HowTheInputIsCutMakesNoDifferenceAtAwkwardRates) {
    for (const char* name : {"pcm-double.wav", "pcm-extensible-8.wav", "pcm-8.wav"}) {
        const Sound sound = Open(name, Stereo(16001));
        const Frames whole = ReadFrames(*sound.converted, 0, kAll);
        for (std::size_t from = 1; from < whole.Count(); from += 4321) {
            ASSERT_TRUE(ReadFrames(*sound.converted, static_cast<std::int64_t>(from), kAll) ==
                        whole.Slice(from, whole.Count()))
                << name << ' ' << from;
        }
    }
}

TEST(ConvertedSound, AtItsOwnRateItIsTheProgramsSound) {
    const std::string name = "aac-stereo.m4a";
    const Frames whole = ReadFrames(*Open(name, Stereo(44100)).converted, 0, kAll);
    Frames expected = DecodeWithProgram(MadeMedia("sound-exact/" + name), AV_SAMPLE_FMT_FLT);
    expected.frameBytes = whole.frameBytes;
    EXPECT_TRUE(whole == expected.Slice(0, whole.Count()));
}

// Centre and surround at 1/√2, the low frequencies left out, mono on both sides at 1/√2.
class Mixes : public testing::TestWithParam<const char*> {};

TEST_P(Mixes, AsTheProgramDoes) {
    const std::string path = MadeMedia(std::string("sound-exact/") + GetParam());
    const int rate = av::SoundStream::Open(path, 0)->Facts().format.rate;
    const Frames whole = ReadFrames(*Open(GetParam(), Stereo(rate)).converted, 0, kAll);
    Frames expected = DecodeWithProgram(path, AV_SAMPLE_FMT_FLT, {}, "-ac 2");
    expected.frameBytes = whole.frameBytes;
    EXPECT_LT(LargestDifference(whole, expected.Slice(0, whole.Count())), 1e-6F);
}

INSTANTIATE_TEST_SUITE_P(Files, Mixes,
                         testing::Values("pcm-8.wav", "pcm-extensible-6.wav",
                                         "pcm-extensible-8.wav", "alac-6.m4a", "aac-6.m4a"),
                         [](const auto& test) { return "File" + std::to_string(test.index); });

TEST(ConvertedSound, IntegersOfTheFileComeOutAsTheyAre) {
    for (const char* name : {"pcm-16.wav", "alac-16.m4a"}) {
        const Sound sound = Open(name, Stereo(44100, AV_SAMPLE_FMT_S16));
        const Frames whole = ReadFrames(*sound.converted, 0, kAll);
        const Frames expected =
            DecodeWithProgram(MadeMedia(std::string("sound-exact/") + name), AV_SAMPLE_FMT_S16);
        EXPECT_EQ(whole.bytes, expected.bytes) << name;
    }
}

TEST(ConvertedSound, ReadsThatFollowEachOtherAreOneRead) {
    const Sound sound = Open("aac-stereo.m4a", Stereo(48000));
    for (std::int64_t from = 200000; from < 300000; from += 1000) {
        ReadFrames(*sound.converted, from, 1000);
    }
    EXPECT_EQ(sound.stream->Counters().seeks, 1);
}

TEST(ConvertedSound, ServesNoNonsense) {
    const Sound sound = Open("pcm-16.wav", Stereo(44100));
    for (const av::SoundFormat& format : {av::SoundFormat{AV_SAMPLE_FMT_NONE, 44100, 2, 0},
                                          av::SoundFormat{AV_SAMPLE_FMT_FLT, 0, 2, 0},
                                          av::SoundFormat{AV_SAMPLE_FMT_FLT, 44100, 0, 0},
                                          av::SoundFormat{AV_SAMPLE_FMT_FLT, -1, 2, 0},
                                          av::SoundFormat{AV_SAMPLE_FMT_FLT, 44100, 65, 0}}) {
        EXPECT_EQ(av::ConvertedSound::Create(*sound.stream, format), nullptr);
    }
}

} // namespace
