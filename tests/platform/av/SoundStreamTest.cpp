// A frame number gives the same sample whatever was read before, for every codec at hand, and it is
// the sample that the ffmpeg program has there.
#include "platform/av/SoundStream.h"

#include <iostream>
#include <random>

#include <gtest/gtest.h>

#include "tests/platform/av/SoundFiles.h"
#include "tests/support/StereoSound.h"
#include "tests/support/TestMedia.h"

namespace {

constexpr unsigned int kSeed = 20261121;

struct File {
    const char* name;
    std::int64_t frames;             // that are sound
    const char* programOptions = ""; // for the program to use the same decoder
    // Codecs whose memory reaches back without end: how far a decoder that begins in the middle may
    // be from one that began at the start. 0: not at all.
    float tolerance = 0;
};

std::ostream& operator<<(std::ostream& out, const File& file) {
    return out << file.name;
}

constexpr const char* kSteadyNoise = "-cons_noisegen 1";
constexpr const char* kFloatLayer2 = "-c:a mp2float";

// Encoders of AC-3, MP2 and Windows Media add what is no sound and say nothing of it; those of AC-3
// and Windows Media lose a part of the last packet.
constexpr File kFiles[] = {
    {"pcm-8.wav", 209475},
    {"pcm-16.wav", 418950},
    {"pcm-24.wav", 456000},
    {"pcm-32.wav", 456000},
    {"pcm-float.wav", 418950},
    {"pcm-double.wav", 418950},
    {"pcm-extensible-6.wav", 456000},
    {"pcm-extensible-8.wav", 456000},
    {"pcm-big-endian.mov", 456000},
    {"pcm.avi", 418950},
    {"a-law.wav", 76000},
    {"adpcm-ms.wav", 209484},
    {"adpcm-ima.wav", 209502},
    {"aac-mono.m4a", 418950},
    {"aac-stereo.m4a", 418950},
    {"aac-6.m4a", 456000},
    {"aac-8000.m4a", 76000},
    {"aac-noise.m4a", 418950, "", 0.1F},
    {"aac-fragments.mp4", 419974},
    {"aac-doubled.m4a", 418950},
    {"alac-16.m4a", 418950},
    {"alac-24.m4a", 456000},
    {"alac-6.m4a", 456000},
    {"mp3-44100.mp4", 418950},
    {"mp3-low.mp4", 418950},
    {"mp3-22050.mov", 209475},
    {"ac3-stereo.mp4", 455936, kSteadyNoise},
    {"ac3-6.mp4", 455936, kSteadyNoise},
    {"eac3.mp4", 455936, kSteadyNoise},
    {"opus.mp4", 456000, "", 1e-4F},
    {"wma1.wma", 417792},
    {"wma1-16000.wma", 151552, "", 0.01F},
    {"wma2.wma", 417792},
    {"wma2-48000.wma", 454656},
    {"wma2-22050.wma", 208896},
    {"aac-44100.m2ts", 420864},
    {"aac-48000.m2ts", 457728},
    {"ac3.m2ts", 456192, kSteadyNoise},
    {"eac3.ts", 456192, kSteadyNoise},
    {"mp2.ts", 419328, kFloatLayer2},
    {"mp2.mpg", 456192, kFloatLayer2},
    {"aac.aac", 420864},
    {"aac.mkv", 420864},
    {"vorbis.ogg", 418950},
    {"flac.flac", 418950},
    {"mp3.avi", 420480},
    {"sound-late.mp4", 253024},
    {"sound-late.m2ts", 253440, kSteadyNoise},
    {"sound-longer.mp4", 252000},
    {"sound-shorter.mp4", 252000},
    {"edit-inside.m4a", 191497},
    {"edit-inside-alac.m4a", 147613},
};

std::unique_ptr<av::SoundStream> Open(const std::string& path) {
    auto stream = av::SoundStream::Open(path, 0);
    EXPECT_NE(stream, nullptr) << path;
    return stream;
}

std::string Made(const File& file) {
    return MadeMedia(std::string("sound-exact/") + file.name);
}

void ExpectRandomReadsEqual(av::SoundStream& stream, const Frames& whole, int reads) {
    std::mt19937 random(kSeed);
    for (int i = 0; i < reads; ++i) {
        const std::size_t start = random() % (whole.Count() + 500);
        const std::size_t count = 1 + random() % (i % 3 == 0 ? 40000 : 3000);
        ASSERT_TRUE(ReadFrames(stream, static_cast<std::int64_t>(start),
                               static_cast<std::int64_t>(count)) == whole.Slice(start, count))
            << "span " << start << " + " << count << ", seed " << kSeed;
    }
}

class MadeSound : public testing::TestWithParam<File> {};

TEST_P(MadeSound, RandomReadsEqualTheLinearRead) {
    const Frames whole = ReadFrames(*Open(Made(GetParam())), 0, kAll);
    EXPECT_EQ(whole.Count(), static_cast<std::size_t>(GetParam().frames));
    ExpectRandomReadsEqual(*Open(Made(GetParam())), whole, 25);
}

TEST_P(MadeSound, BackwardReadsMakeTheWhole) {
    const auto stream = Open(Made(GetParam()));
    const Frames whole = ReadFrames(*stream, 0, kAll);
    constexpr std::size_t kChunk = 9973;
    for (std::size_t from = whole.Count() / kChunk * kChunk;; from -= kChunk) {
        ASSERT_TRUE(ReadFrames(*stream, static_cast<std::int64_t>(from), kChunk) ==
                    whole.Slice(from, kChunk))
            << from;
        if (from == 0) {
            break;
        }
    }
}

TEST_P(MadeSound, SamplesAreThoseOfTheFFmpegProgram) {
    const auto stream = Open(Made(GetParam()));
    const Frames whole = ReadFrames(*stream, 0, kAll);
    Frames expected = DecodeWithProgram(Made(GetParam()), stream->Facts().format.sample,
                                        GetParam().programOptions);
    expected.frameBytes = whole.frameBytes;
    // The program leaves a part of the padding in the last packet.
    EXPECT_GE(expected.Count(), whole.Count());
    EXPECT_LT(expected.Count(), whole.Count() + 1152);
    expected = expected.Slice(0, whole.Count());
    if (GetParam().tolerance == 0) {
        EXPECT_TRUE(whole == expected);
    } else {
        EXPECT_LT(LargestDifference(whole, expected), GetParam().tolerance);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, MadeSound, testing::ValuesIn(kFiles), [](const auto& test) {
    std::string name = test.param.name;
    for (char& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
});

std::unique_ptr<av::SoundStream> OpenMade(const std::string& name) {
    return Open(MadeMedia("sound-exact/" + name));
}

TEST(SoundStream, TellsFormatAndStart) {
    const auto stream = OpenMade("sound-late.m2ts");
    EXPECT_EQ(stream->Facts().format.rate, 48000);
    EXPECT_EQ(stream->Facts().format.channels, 2);
    EXPECT_EQ(stream->Facts().format.layout, AV_CH_LAYOUT_STEREO);
    // Behind the start of the pictures, which is at 1.4 s.
    EXPECT_NEAR(static_cast<double>(stream->Facts().start), 2.9e7, 0.01e7);
    EXPECT_EQ(OpenMade("aac-stereo.m4a")->Facts().start, 0);
    EXPECT_EQ(OpenMade("pcm-extensible-6.wav")->Facts().format.layout, AV_CH_LAYOUT_5POINT1_BACK);
}

TEST(SoundStream, NegativeFramesAreTheFirst) {
    const auto stream = OpenMade("aac-stereo.m4a");
    const Frames first = ReadFrames(*stream, 0, 100);
    stream->Seek(-5000);
    av::SoundPiece piece;
    ASSERT_EQ(stream->Read(piece), av::SoundRead::Piece);
    EXPECT_EQ(piece.start, 0);
    EXPECT_TRUE(ReadFrames(*stream, 0, 100) == first);
}

TEST(SoundStream, BehindTheEndThereIsNothingAndASeekGoesOn) {
    const auto stream = OpenMade("aac-stereo.m4a");
    for (const std::int64_t frame : {std::int64_t{418950}, std::int64_t{500000}, kAll}) {
        EXPECT_EQ(ReadFrames(*stream, frame, 10).Count(), 0U) << frame;
    }
    EXPECT_EQ(ReadFrames(*stream, 418940, 100).Count(), 10U);
    EXPECT_EQ(ReadFrames(*stream, 100, 100).Count(), 100U);
}

TEST(SoundStream, OpensWhatThereIsAlone) {
    EXPECT_EQ(av::SoundStream::Open(MadeMedia("sound-exact/aac-stereo.m4a"), 1), nullptr);
    EXPECT_EQ(av::SoundStream::Open(MadeMedia("h264/plain.mp4"), 0), nullptr);
    EXPECT_EQ(av::SoundStream::Open("/nothing/there.wav", 0), nullptr);
}

// Work is counted in AVFrames decoded and packets read.

TEST(SoundStream, ReadingOnDecodesEachPacketOnceAndThePreRollOfEachSegment) {
    const auto stream = OpenMade("aac-stereo.m4a");
    const std::size_t packets = 411;
    ReadFrames(*stream, 0, kAll);
    EXPECT_EQ(stream->Counters().seeks, 0);
    EXPECT_GE(stream->Counters().framesDecoded, packets);
    EXPECT_LT(stream->Counters().framesDecoded, packets * 108 / 100);
}

TEST(SoundStream, ALastPacketThatLiesInTwoSegmentsIsReadWhole) {
    const auto stream = OpenMade("aac-askew.mp4");
    const Frames whole = ReadFrames(*stream, 0, kAll);
    constexpr std::size_t kSegment = 49152;
    ASSERT_GT(whole.Count(), kSegment);
    ASSERT_LT(whole.Count(), kSegment + 1024);
    for (const std::size_t from : {kSegment - 700, kSegment, kSegment + 1, whole.Count() - 1}) {
        EXPECT_TRUE(ReadFrames(*OpenMade("aac-askew.mp4"), static_cast<std::int64_t>(from), kAll) ==
                    whole.Slice(from, whole.Count() - from))
            << from;
    }
}

TEST(SoundStream, ReadsThatFollowEachOtherAreOneRead) {
    const auto stream = OpenMade("pcm-16.wav");
    for (std::int64_t from = 0; from < 400000; from += 5000) {
        ReadFrames(*stream, from, 5000);
    }
    EXPECT_EQ(stream->Counters().seeks, 0);
}

class CostOfARead : public testing::TestWithParam<const char*> {};

TEST_P(CostOfARead, DoesNotGrowWithThePosition) {
    const auto stream = OpenMade(GetParam());
    std::int64_t most = 0;
    for (const std::int64_t frame : {400000, 130000, 300000, 200000}) {
        const av::WorkCounters before = stream->Counters();
        EXPECT_EQ(ReadFrames(*stream, frame, 100).Count(), 100U);
        const av::WorkCounters after = stream->Counters();
        EXPECT_LE(after.seeks - before.seeks, 2);
        most = std::max({most, after.framesDecoded - before.framesDecoded,
                         after.packetsRead - before.packetsRead});
    }
    EXPECT_LE(most, 90); // of about 410; a segment has 48 and its pre-roll
}

INSTANTIATE_TEST_SUITE_P(Files, CostOfARead,
                         testing::Values("aac-stereo.m4a", "aac-44100.m2ts", "ac3.m2ts",
                                         "pcm-16.wav", "alac-16.m4a", "aac-fragments.mp4"),
                         [](const auto& test) { return "File" + std::to_string(test.index); });

void CheckFolder(const char* folder, int& exact, int& none) {
    for (const auto& file : RealMedia(folder)) {
        SCOPED_TRACE(file.string());
        const auto stream = av::SoundStream::Open(file.string(), 0);
        if (stream == nullptr) {
            ++none;
            continue;
        }
        constexpr std::int64_t kMost = 2'880'000; // a minute
        const Frames whole = ReadFrames(*stream, 0, kMost);
        if (whole.Count() < kMost) {
            ExpectRandomReadsEqual(*av::SoundStream::Open(file.string(), 0), whole, 8);
            ++exact;
        }
    }
}

TEST(RealSound, RandomReadsEqualTheLinearRead) {
    int exact = 0;
    int none = 0;
    for (const char* folder : {"mp4", "mp4_audio", "wav", "asf", "mpeg", "avi", "other"}) {
        CheckFolder(folder, exact, none);
    }
    std::cout << exact << " files exact, " << none << " without sound that can be decoded\n";
    EXPECT_TRUE(exact + none == 0 || exact > 100);
}

} // namespace
