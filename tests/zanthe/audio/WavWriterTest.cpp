#include "zanthe/audio/WavWriter.h"

#include <filesystem>
#include <limits>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

using Zanthe::WavUtl;
using Zanthe::WavWriter;
using Format = WavUtl::WavFormat;

namespace {

std::vector<float> Ramp(std::size_t count, float step) {
    std::vector<float> samples;
    for (std::size_t i = 0; i < count; ++i) {
        samples.push_back(static_cast<float>(i) * step - 0.7f);
    }
    return samples;
}

TEST(WavWriter, SaysUnfinishedUntilItFinishes) {
    const TemporaryFolder folder;
    const std::string path = folder / "a.wav";
    { const WavWriter abandoned(path, Format::Pcm16, 44100); }
    const std::string bytes = ReadWholeFile(path);
    ASSERT_EQ(bytes.size(), 44u);
    EXPECT_EQ(bytes.substr(4, 4), "\xF8\xFF\xFF\xFF");
    EXPECT_EQ(bytes.substr(40, 4), "\xD4\xFF\xFF\xFF");
}

TEST(WavWriter, AnAbandonedFileCanBeRead) {
    const TemporaryFolder folder;
    const float sample = 0.5f;
    {
        WavWriter abandoned(folder / "a.wav", Format::Float32, 44100);
        abandoned.Append(&sample, &sample, 1);
    }
    EXPECT_EQ(WavUtl::ReadWav(folder / "a.wav"), (std::vector<std::vector<float>>{{0.5f}, {0.5f}}));
}

TEST(WavWriter, SpansMakeTheFileOfTheWhole) {
    const TemporaryFolder folder;
    const auto left = Ramp(5000, 0.0003f);
    const auto right = Ramp(5000, -0.0001f);
    for (const Format format : {Format::Float32, Format::Pcm16}) {
        ASSERT_TRUE(WavUtl::WriteWav(folder / "whole.wav", {left, right}, format, 32000));
        WavWriter writer(folder / "spans.wav", format, 32000);
        std::size_t at = 0;
        for (const std::size_t span : {1u, 0u, 1023u, 1024u, 1025u, 1927u}) {
            writer.Append(left.data() + at, right.data() + at, span);
            at += span;
        }
        ASSERT_EQ(at, left.size());
        EXPECT_TRUE(writer.Finish());
        EXPECT_EQ(ReadWholeFile(folder / "spans.wav"), ReadWholeFile(folder / "whole.wav"));
    }
}

TEST(WavWriter, AppendsNothing) {
    const TemporaryFolder folder;
    WavWriter writer(folder / "a.wav", Format::Pcm16, 44100);
    writer.Append(nullptr, nullptr, 0);
    EXPECT_TRUE(writer.Finish());
    EXPECT_EQ(std::filesystem::file_size(folder / "a.wav"), 44u);
}

TEST(WavWriter, FinishesOnce) {
    const TemporaryFolder folder;
    WavWriter writer(folder / "a.wav", Format::Pcm16, 44100);
    const float sample = 0.5f;
    writer.Append(&sample, &sample, 1);
    EXPECT_TRUE(writer.Finish());
    writer.Append(&sample, &sample, 1); // too late: the file is closed
    EXPECT_FALSE(writer.Finish());
    EXPECT_EQ(std::filesystem::file_size(folder / "a.wav"), 48u);
}

TEST(WavWriter, FailuresShowInFinish) {
    const TemporaryFolder folder;
    const std::vector<float> samples(100000);
    for (const std::string& path : {folder / "none/a.wav", std::string("/dev/full")}) {
        WavWriter writer(path, Format::Float32, 44100);
        writer.Append(samples.data(), samples.data(), samples.size());
        EXPECT_FALSE(writer.Finish()) << path;
    }
}

TEST(WavWriter, MaxFramesFillTheSizesInTheHeader) {
    for (const auto& [format, frameBytes] : {std::pair{Format::Float32, 8}, {Format::Pcm16, 4}}) {
        const std::int64_t frames = WavWriter::MaxFrames(format);
        const std::int64_t riffSize = 36 + frames * frameBytes;
        constexpr std::int64_t largest = std::numeric_limits<std::uint32_t>::max();
        EXPECT_LE(riffSize, largest);
        EXPECT_GT(riffSize + frameBytes, largest);
    }
    EXPECT_EQ(WavWriter::MaxFrames(Format::Float32), 536870907);
    EXPECT_EQ(WavWriter::MaxFrames(Format::Pcm16), 1073741814);
    EXPECT_EQ(WavWriter::MaxFrames(static_cast<Format>(9)), WavWriter::MaxFrames(Format::Pcm16));
}

} // namespace
