#include "zanthe/audio/WavUtl.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TemporaryFolder.h"

using Zanthe::WavUtl;
using Format = WavUtl::WavFormat;
using Planes = std::vector<std::vector<float>>;

namespace {

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();

// A header as it stands in a file, with the format tag (PCM: 1, float: 3) that reading looks at.
std::string HeaderWithTag(char tag) {
    std::string header(44, 'x');
    header[20] = tag;
    header[21] = 0;
    return header;
}

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) {
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

// What PCM makes of one sample.
int PcmOf(float sample) {
    const TemporaryFolder folder;
    EXPECT_TRUE(WavUtl::WriteWav(folder / "a.wav", {{sample}, {0.0f}}, Format::Pcm16, 8000));
    const std::string bytes = ReadWholeFile(folder / "a.wav");
    EXPECT_EQ(bytes.size(), 48u);
    return static_cast<std::int16_t>(static_cast<unsigned char>(bytes.at(44)) |
                                     static_cast<unsigned char>(bytes.at(45)) << 8);
}

TEST(WriteWav, FloatFileByteForByte) {
    const TemporaryFolder folder;
    ASSERT_TRUE(
        WavUtl::WriteWav(folder / "a.wav", {{1.0f, -0.5f}, {0.25f, 0.0f}}, Format::Float32, 48000));
    const std::string expected = std::string("RIFF") + Bytes({52, 0, 0, 0}) + "WAVE" + "fmt " +
                                 Bytes({16,   0,    0,    0,    //
                                        3,    0,                // float
                                        2,    0,                // channels
                                        0x80, 0xBB, 0x00, 0x00, // 48000
                                        0x00, 0xDC, 0x05, 0x00, // 384000
                                        8,    0,                // bytes a frame
                                        32,   0}) +             // bits a sample
                                 "data" +
                                 Bytes({16,   0,    0,    0,    //
                                        0x00, 0x00, 0x80, 0x3F, // 1.0
                                        0x00, 0x00, 0x80, 0x3E, // 0.25
                                        0x00, 0x00, 0x00, 0xBF, // -0.5
                                        0x00, 0x00, 0x00, 0x00});
    EXPECT_EQ(ReadWholeFile(folder / "a.wav"), expected);
}

TEST(WriteWav, PcmFileByteForByte) {
    const TemporaryFolder folder;
    ASSERT_TRUE(
        WavUtl::WriteWav(folder / "a.wav", {{1.0f, -1.0f}, {0.5f, 0.0f}}, Format::Pcm16, 44100));
    const std::string expected = std::string("RIFF") + Bytes({44, 0, 0, 0}) + "WAVE" + "fmt " +
                                 Bytes({16,   0,    0,    0,    //
                                        1,    0,                // PCM
                                        2,    0,                // channels
                                        0x44, 0xAC, 0x00, 0x00, // 44100
                                        0x10, 0xB1, 0x02, 0x00, // 176400
                                        4,    0,                // bytes a frame
                                        16,   0}) +             // bits a sample
                                 "data" +
                                 Bytes({8, 0, 0, 0,               //
                                        0xFF, 0x7F, 0x00, 0x40,   // 32767, 16384
                                        0x00, 0x80, 0x00, 0x00}); // -32768, 0
    EXPECT_EQ(ReadWholeFile(folder / "a.wav"), expected);
}

TEST(WriteWav, NotTwoEqualPlanesMakeNoFile) {
    const TemporaryFolder folder;
    const Planes refused[] = {{}, {{1.0f}}, {{1.0f}, {}}, {{1.0f}, {1.0f, 2.0f}}, {{}, {}, {}}};
    for (const auto& planes : refused) {
        EXPECT_FALSE(WavUtl::WriteWav(folder / "a.wav", planes, Format::Float32, 44100));
        EXPECT_FALSE(std::filesystem::exists(folder / "a.wav"));
    }
    const std::string old = folder.Write("old.wav", "as it was");
    EXPECT_FALSE(WavUtl::WriteWav(old, {{1.0f}}, Format::Float32, 44100));
    EXPECT_EQ(ReadWholeFile(old), "as it was");
}

TEST(WriteWav, EmptyPlanesMakeAHeader) {
    const TemporaryFolder folder;
    for (const Format format : {Format::Float32, Format::Pcm16}) {
        ASSERT_TRUE(WavUtl::WriteWav(folder / "a.wav", {{}, {}}, format, 44100));
        const std::string bytes = ReadWholeFile(folder / "a.wav");
        ASSERT_EQ(bytes.size(), 44u);
        EXPECT_EQ(bytes.substr(4, 4), Bytes({36, 0, 0, 0}));
        EXPECT_EQ(bytes.substr(40, 4), Bytes({0, 0, 0, 0}));
    }
}

TEST(WriteWav, ReplacesALongerFile) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.wav", std::string(1000, 'x'));
    ASSERT_TRUE(WavUtl::WriteWav(path, {{0.0f}, {0.0f}}, Format::Pcm16, 44100));
    EXPECT_EQ(ReadWholeFile(path).size(), 48u);
}

TEST(WriteWav, EveryOtherFormatIsPcm) {
    const TemporaryFolder folder;
    for (const int format : {0, 2, 3, -1, 16}) {
        ASSERT_TRUE(WavUtl::WriteWav(folder / "a.wav", {{0.0f}, {0.0f}},
                                     static_cast<Format>(format), 44100));
        const std::string bytes = ReadWholeFile(folder / "a.wav");
        EXPECT_EQ(bytes.size(), 48u) << format;
        EXPECT_EQ(bytes.substr(20, 2), Bytes({1, 0})) << format;
    }
}

TEST(WriteWav, PcmRoundsToTheNearestTiesAwayFromZero) {
    EXPECT_EQ(PcmOf(0.0f), 0);
    EXPECT_EQ(PcmOf(-0.0f), 0);
    EXPECT_EQ(PcmOf(0.49f / 32768), 0);
    EXPECT_EQ(PcmOf(0.5f / 32768), 1);
    EXPECT_EQ(PcmOf(1.5f / 32768), 2);
    EXPECT_EQ(PcmOf(2.5f / 32768), 3);
    EXPECT_EQ(PcmOf(-0.5f / 32768), -1);
    EXPECT_EQ(PcmOf(-2.5f / 32768), -3);
    EXPECT_EQ(PcmOf(0.5f), 16384);
}

TEST(WriteWav, PcmClamps) {
    EXPECT_EQ(PcmOf(1.0f), 32767);
    EXPECT_EQ(PcmOf(-1.0f), -32768);
    EXPECT_EQ(PcmOf(32767.0f / 32768), 32767);
    EXPECT_EQ(PcmOf(32767.5f / 32768), 32767);
    EXPECT_EQ(PcmOf(32766.5f / 32768), 32767);
    EXPECT_EQ(PcmOf(-32768.5f / 32768), -32768);
    EXPECT_EQ(PcmOf(1.0e30f), 32767);
    EXPECT_EQ(PcmOf(-std::numeric_limits<float>::max()), -32768);
    EXPECT_EQ(PcmOf(Infinity), 32767);
    EXPECT_EQ(PcmOf(-Infinity), -32768);
    EXPECT_EQ(PcmOf(NotANumber), 0);
    EXPECT_EQ(PcmOf(-NotANumber), 0);
}

TEST(WriteWav, WritesAnySampleRate) {
    const TemporaryFolder folder;
    ASSERT_TRUE(WavUtl::WriteWav(folder / "a.wav", {{}, {}}, Format::Float32, 0x12345678));
    EXPECT_EQ(ReadWholeFile(folder / "a.wav").substr(24, 8),
              Bytes({0x78, 0x56, 0x34, 0x12, 0xC0, 0xB3, 0xA2, 0x91}));
    ASSERT_TRUE(WavUtl::WriteWav(folder / "a.wav", {{}, {}}, Format::Pcm16, -1));
    EXPECT_EQ(ReadWholeFile(folder / "a.wav").substr(24, 8),
              Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFC, 0xFF, 0xFF, 0xFF}));
}

TEST(WriteWav, WhereNoFileCanBe) {
    const TemporaryFolder folder;
    const Planes planes{{1.0f}, {1.0f}};
    EXPECT_FALSE(WavUtl::WriteWav(folder / "none/a.wav", planes, Format::Float32, 44100));
    EXPECT_FALSE(WavUtl::WriteWav(folder.Path().string(), planes, Format::Float32, 44100));
    EXPECT_FALSE(WavUtl::WriteWav("", planes, Format::Float32, 44100));
    EXPECT_FALSE(WavUtl::WriteWav("/dev/full", planes, Format::Float32, 44100));
}

TEST(WriteWav, TakesAnyFileName) {
    const TemporaryFolder folder;
    const std::string path = folder / "t\xC3\xB6ne-\xE9.wav";
    ASSERT_TRUE(WavUtl::WriteWav(path, {{1.0f}, {2.0f}}, Format::Float32, 44100));
    EXPECT_EQ(WavUtl::ReadWav(path), (Planes{{1.0f}, {2.0f}}));
}

TEST(ReadWav, FloatComesBackBitForBit) {
    const TemporaryFolder folder;
    Planes planes(2);
    for (std::uint32_t i = 0; i < 100000; ++i) {
        planes[0].push_back(std::bit_cast<float>(i * 2654435761u));
        planes[1].push_back(std::bit_cast<float>(~i * 2246822519u));
    }
    planes[0].insert(planes[0].end(), {Infinity, -Infinity, NotANumber, -0.0f});
    planes[1].insert(planes[1].end(), {1e-45f, 3e38f, -NotANumber, 0.0f});
    ASSERT_TRUE(WavUtl::WriteWav(folder / "a.wav", planes, Format::Float32, 44100));
    const Planes read = WavUtl::ReadWav(folder / "a.wav");
    ASSERT_EQ(read.size(), 2u);
    for (std::size_t plane = 0; plane < 2; ++plane) {
        ASSERT_EQ(read[plane].size(), planes[plane].size());
        for (std::size_t i = 0; i < read[plane].size(); ++i) {
            ASSERT_EQ(std::bit_cast<std::uint32_t>(read[plane][i]),
                      std::bit_cast<std::uint32_t>(planes[plane][i]));
        }
    }
}

TEST(ReadWav, PcmLosesAtMostHalfAStep) {
    const TemporaryFolder folder;
    Planes planes(2);
    for (int i = 0; i < 70001; ++i) {
        planes[0].push_back(static_cast<float>(std::sin(i * 0.1) * 0.99));
        planes[1].push_back(static_cast<float>(i) / 70002 - 0.5f);
    }
    ASSERT_TRUE(WavUtl::WriteWav(folder / "a.wav", planes, Format::Pcm16, 44100));
    const Planes read = WavUtl::ReadWav(folder / "a.wav");
    for (std::size_t plane = 0; plane < 2; ++plane) {
        ASSERT_EQ(read[plane].size(), planes[plane].size());
        for (std::size_t i = 0; i < read[plane].size(); ++i) {
            ASSERT_LE(std::abs(read[plane][i] - planes[plane][i]), 0.5f / 32768);
        }
    }
}

TEST(ReadWav, PcmIsScaledBy32768) {
    const TemporaryFolder folder;
    const std::string path = folder.Write(
        "a.wav", HeaderWithTag(1) + Bytes({0xFF, 0x7F, 0x00, 0x80, 0x01, 0x00, 0xFF, 0xFF}));
    EXPECT_EQ(WavUtl::ReadWav(path),
              (Planes{{32767.0f / 32768, 1.0f / 32768}, {-1.0f, -1.0f / 32768}}));
}

TEST(ReadWav, OnlyTheFormatTagIsLookedAt) {
    const TemporaryFolder folder;
    const std::string samples = Bytes({0x00, 0x00, 0x80, 0x3F, 0x00, 0x00, 0x00, 0xBF});
    const std::string floats = folder.Write("float.wav", HeaderWithTag(3) + samples);
    EXPECT_EQ(WavUtl::ReadWav(floats), (Planes{{1.0f}, {-0.5f}}));
    for (const char tag : {'\0', '\1', '\2', '\xFE'}) {
        const std::string other = folder.Write("other.wav", HeaderWithTag(tag) + samples);
        EXPECT_EQ(WavUtl::ReadWav(other).at(0).size(), 2u);
    }
    // The tag is 16 bits wide: 0x0103 is not 3.
    std::string wide = HeaderWithTag(3);
    wide[21] = 1;
    EXPECT_EQ(WavUtl::ReadWav(folder.Write("wide.wav", wide + samples)).at(0).size(), 2u);
}

TEST(ReadWav, AMonoFileComesOutAsIfItWereStereo) {
    const TemporaryFolder folder;
    std::string header = HeaderWithTag(1);
    header[22] = 1; // channels
    header[23] = 0;
    const std::string path =
        folder.Write("mono.wav", header + Bytes({0x00, 0x40, 0x00, 0x20, 0x00, 0xC0, 0x00, 0xE0}));
    EXPECT_EQ(WavUtl::ReadWav(path), (Planes{{0.5f, -0.5f}, {0.25f, -0.25f}}));
}

TEST(ReadWav, FurtherChunksAreReadAsSamples) {
    const TemporaryFolder folder;
    std::string header = HeaderWithTag(1);
    header.replace(36, 4, "LIST");
    header.replace(40, 4, Bytes({4, 0, 0, 0}));
    const std::string path =
        folder.Write("list.wav", header + Bytes({0x00, 0x40, 0x00, 0x20}) + "data" +
                                     Bytes({4, 0, 0, 0}) + Bytes({0x00, 0xC0, 0x00, 0xE0}));
    EXPECT_EQ(WavUtl::ReadWav(path),
              (Planes{{0.5f, static_cast<float>('a' << 8 | 'd') / 32768, 4.0f / 32768, -0.5f},
                      {0.25f, static_cast<float>('a' << 8 | 't') / 32768, 0.0f, -0.25f}}));
}

TEST(ReadWav, ALastLeftSampleGetsTheRightOneBefore) {
    const TemporaryFolder folder;
    const std::string pcm =
        folder.Write("pcm.wav", HeaderWithTag(1) + Bytes({0x00, 0x40, 0x00, 0x20, 0x00, 0xC0}));
    EXPECT_EQ(WavUtl::ReadWav(pcm), (Planes{{0.5f, -0.5f}, {0.25f, 0.25f}}));
    const std::string floats =
        folder.Write("float.wav", HeaderWithTag(3) + Bytes({0, 0, 0x80, 0x3F, 0, 0, 0, 0x3F, //
                                                            0, 0, 0x80, 0xBF}));
    EXPECT_EQ(WavUtl::ReadWav(floats), (Planes{{1.0f, -1.0f}, {0.5f, 0.5f}}));
}

TEST(ReadWav, AnOnlyLeftSampleGetsSilence) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.wav", HeaderWithTag(1) + Bytes({0x00, 0x40}));
    EXPECT_EQ(WavUtl::ReadWav(path), (Planes{{0.5f}, {0.0f}}));
}

TEST(ReadWav, ASampleThatIsCutOffIsNone) {
    const TemporaryFolder folder;
    const std::string frame = Bytes({0, 0, 0x80, 0x3F, 0, 0, 0, 0x3F});
    for (std::size_t more = 0; more < 8; ++more) {
        const std::string path =
            folder.Write("a.wav", HeaderWithTag(3) + frame + frame.substr(0, more));
        const Planes expected =
            more < 4 ? Planes{{1.0f}, {0.5f}} : Planes{{1.0f, 1.0f}, {0.5f, 0.5f}};
        EXPECT_EQ(WavUtl::ReadWav(path), expected) << more << " bytes more";
    }
}

// Longer than what is read at a time, by every remainder.
TEST(ReadWav, LongFilesEndAsShortOnesDo) {
    const TemporaryFolder folder;
    for (const std::size_t bytes : {65536u - 1, 65536u, 65536u + 1, 65536u + 2, 65536u + 4}) {
        const std::string path =
            folder.Write("a.wav", HeaderWithTag(1) + std::string(bytes, '\x40'));
        const Planes read = WavUtl::ReadWav(path);
        EXPECT_EQ(read[0].size(), (bytes / 2 + 1) / 2) << bytes;
        EXPECT_EQ(read[1], read[0]) << bytes;
    }
}

TEST(ReadWav, AShortHeaderHasNoSamples) {
    const TemporaryFolder folder;
    for (const std::size_t length : {0u, 1u, 21u, 22u, 43u, 44u}) {
        const std::string path = folder.Write("a.wav", HeaderWithTag(3).substr(0, length));
        EXPECT_EQ(WavUtl::ReadWav(path), Planes(2)) << length;
    }
}

TEST(ReadWav, WhatIsNoRegularFileHasNoSamples) {
    const TemporaryFolder folder;
    EXPECT_EQ(WavUtl::ReadWav(folder / "none.wav"), Planes(2));
    EXPECT_EQ(WavUtl::ReadWav(folder.Path().string()), Planes(2));
    EXPECT_EQ(WavUtl::ReadWav(""), Planes(2));
    EXPECT_EQ(WavUtl::ReadWav("/dev/zero"), Planes(2));
    const std::string pipe = folder / "pipe.wav";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(WavUtl::ReadWav(pipe), Planes(2)); // and does not wait for a writer
}

TEST(ReadWav, FollowsALink) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.wav", HeaderWithTag(1) + Bytes({0, 0x40, 0, 0x20}));
    std::filesystem::create_symlink(path, folder / "link.wav");
    EXPECT_EQ(WavUtl::ReadWav(folder / "link.wav"), (Planes{{0.5f}, {0.25f}}));
}

} // namespace
