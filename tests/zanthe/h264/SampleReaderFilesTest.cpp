// The reader over files, as hosts see it: every picture by its own time.
#include <algorithm>
#include <cctype>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/mf/MediaFormats.h"
#include "platform/mf/Sample.h"
#include "tests/support/BgraPicture.h"
#include "tests/support/ReferencePictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/core/DecoderFactory.h"
#include "zanthe/h264/WinH264SampleReader.h"

namespace Zanthe {
namespace {

constexpr auto Memory = DecoderOutputFormat::MemoryArgb32;
constexpr auto NoFlags = VideoSampleReaderFlags::None;

std::unique_ptr<WinH264SampleReader> Open(const std::string& path,
                                          DecoderOutputFormat format = Memory) {
    return std::unique_ptr<WinH264SampleReader>(
        WinH264SampleReader::create(path, 0, format, nullptr));
}

std::unique_ptr<VideoSample> Read(VideoSampleReader& reader, MediaTime time) {
    return std::unique_ptr<VideoSample>(reader.readVideoSample(time, {}, NoFlags));
}

BgraPicture PixelsOf(VideoSample& sample) {
    BgraPicture picture{sample.width(), sample.height(), {}};
    sample.lockData();
    for (int row = 0; row < picture.height; ++row) {
        const unsigned char* line = sample.data() + std::ptrdiff_t{row} * sample.bytesPerRow();
        picture.bits.insert(picture.bits.end(), line, line + 4 * picture.width);
    }
    sample.unlockData();
    return picture;
}

// The number in the picture shown at `time`; -2 where there is none.
int NumberAt(VideoSampleReader& reader, MediaTime time) {
    const auto sample = Read(reader, time);
    return sample == nullptr ? -2 : NumberInPicture(PixelsOf(*sample));
}

std::size_t Reads(const WinH264SampleReader& reader) {
    return static_cast<std::size_t>(std::count(reader.readSampleOps().begin(),
                                               reader.readSampleOps().end(),
                                               ReadSampleOp::ReadNextSample));
}

// Of 24 pictures a second.
MediaTime Frame(int number) {
    return {number, 24};
}

class NumberedFiles : public testing::TestWithParam<const char*> {};

TEST_P(NumberedFiles, ForwardBackwardAndShuffled) {
    const auto reader = Open(MadeMedia(GetParam()));
    ASSERT_EQ(reader->readerStatus(), ReaderStatusOk);
    for (int i = 0; i < 96; ++i) {
        EXPECT_EQ(NumberAt(*reader, Frame(i)), i);
    }
    for (int i = 95; i >= 60; --i) {
        EXPECT_EQ(NumberAt(*reader, Frame(i)), i);
    }
    std::mt19937 random(7);
    for (int i = 0; i < 30; ++i) {
        const int number = static_cast<int>(random() % 96);
        EXPECT_EQ(NumberAt(*reader, Frame(number) + MediaTime(1, 50)), number);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, NumberedFiles,
    testing::Values("h264/plain.mp4", "h264/b-pyramid.mp4", "h264/open-groups.mov",
                    "h264/long-group.mp4", "h264/fragmented.mp4", "h264/audio-first.mp4",
                    "h264/edit-empty-start.mp4", "h264/edit-none.mp4", "h264/hevc-open-groups.mp4",
                    "h264/mpeg4-bframes.mp4"),
    [](const auto& file) {
        std::string name = file.param;
        std::replace_if(
            name.begin(), name.end(),
            [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
        return name;
    });

TEST(SampleReaderFiles, TheNextPictureCostsOneReadAndARepeatNone) {
    const auto reader = Open(MadeMedia("h264/plain.mp4"));
    EXPECT_EQ(NumberAt(*reader, Frame(0)), 0);
    EXPECT_EQ(Reads(*reader), 0U);
    for (int i = 1; i < 40; ++i) {
        EXPECT_EQ(NumberAt(*reader, Frame(i)), i);
        EXPECT_EQ(NumberAt(*reader, Frame(i)), i);
        EXPECT_EQ(Reads(*reader), static_cast<std::size_t>(i));
    }
}

TEST(SampleReaderFiles, ASeekLandsOnThePicture) {
    const auto reader = Open(MadeMedia("h264/plain.mp4"));
    EXPECT_EQ(NumberAt(*reader, Frame(90)), 90);
    EXPECT_EQ(NumberAt(*reader, Frame(10)), 10);
    EXPECT_THAT(reader->attempts(), testing::ElementsAre(1, 1));
}

TEST(SampleReaderFiles, Boundaries) {
    const auto reader = Open(MadeMedia("h264/no-bframes.mp4"));
    EXPECT_EQ(NumberAt(*reader, Frame(10) - MediaTime(1, 1'000'000)), 9);
    EXPECT_EQ(NumberAt(*reader, Frame(10)), 10);
    EXPECT_EQ(NumberAt(*reader, Frame(96) - MediaTime(1, 1'000'000)), 95);
    EXPECT_EQ(NumberAt(*reader, Frame(-1)), 0);
    EXPECT_EQ(NumberAt(*reader, Frame(96) + MediaTime(1, 1'000'000)), -2);
    EXPECT_EQ(NumberAt(*reader, Frame(96)), -2); // looked for, as the stream's end, in vain
    EXPECT_EQ(NumberAt(*reader, Frame(50)), 50);
}

TEST(SampleReaderFiles, TurnedPicturesComeAsOpaqueRgb32) {
    for (const auto& [name, rotation] :
         {std::pair("h264/rotated-90.mp4", 90), std::pair("h264/rotated-180.mp4", 180),
          std::pair("h264/rotated-270.mp4", 270)}) {
        const auto reader = Open(MadeMedia(name), DecoderOutputFormat::DeviceArgb32);
        EXPECT_EQ(reader->outputFormat(), DecoderOutputFormat::MemoryNv12);
        EXPECT_EQ(reader->nativeMediaTypeInfo().rotation, rotation);
        const auto sample = Read(*reader, Frame(30));
        ASSERT_NE(sample, nullptr);
        EXPECT_EQ(sample->videoSampleFormat(), VideoSampleFormat::SystemMemory);
        const BgraPicture picture = PixelsOf(*sample);
        EXPECT_EQ(NumberInPicture(picture), 30); // as coded: the host turns it
        for (std::size_t i = 3; i < picture.bits.size(); i += 4) {
            ASSERT_EQ(picture.bits[i], 255);
        }
    }
}

TEST(SampleReaderFiles, PixelsAreThoseOfTheReference) {
    for (const char* name : {"h264/plain.mp4", "h264/bt709.mp4", "h264/smpte240m.mp4",
                             "h264/full-range.mp4", "h264/hd.mp4", "h264/hevc-plain.mp4"}) {
        const std::string path = MadeMedia(name);
        const ReferencePictures reference(path, 12);
        for (const auto format : {Memory, DecoderOutputFormat::MemoryNv12}) {
            const auto reader = Open(path, format);
            const auto sample = Read(*reader, reference.Time(11));
            ASSERT_NE(sample, nullptr) << name;
            EXPECT_GT(Psnr(PixelsOf(*sample), reference.Pixels(11)), 30.0)
                << name << ", format " << static_cast<int>(format);
        }
    }
}

TEST(SampleReaderFiles, PixelAspectAndColour) {
    const auto wide = Open(MadeMedia("h264/wide-pixels.mp4"));
    EXPECT_EQ(wide->nativeMediaTypeInfo().pixelAspectRatioNumerator, 4U);
    EXPECT_EQ(wide->nativeMediaTypeInfo().pixelAspectRatioDenominator, 3U);
    EXPECT_EQ(Open(MadeMedia("h264/bt709.mp4"))->colorConversionInfo().matrix, 1U);
    EXPECT_EQ(Open(MadeMedia("h264/bt601.mp4"))->colorConversionInfo().matrix, 2U);
    EXPECT_EQ(Open(MadeMedia("h264/smpte240m.mp4"))->colorConversionInfo().matrix, 3U);
    EXPECT_EQ(Open(MadeMedia("h264/full-range.mp4"))->colorConversionInfo().nominalRange, 1U);
    EXPECT_EQ(Open(MadeMedia("h264/full-range-only.mp4"))->colorConversionInfo().nominalRange, 0U);
    EXPECT_EQ(Open(MadeMedia("h264/hd.mp4"))->colorConversionInfo().matrix, 1U);
    EXPECT_EQ(Open(MadeMedia("h264/mpeg4-plain.mp4"))->colorConversionInfo().matrix, 2U);
}

// Neither an MP4 header nor the source tells how long it is, so its start alone is found.
TEST(SampleReaderFiles, AnElementaryStreamHasItsFirstPicture) {
    const auto reader = Open(MadeMedia("h264/elementary.h264"));
    ASSERT_EQ(reader->readerStatus(), ReaderStatusOk);
    EXPECT_EQ(reader->nativeMediaTypeInfo().subtype, MFVideoFormat_H264_ES);
    EXPECT_EQ(NumberAt(*reader, Frame(0)), 0);
    EXPECT_EQ(NumberAt(*reader, Frame(1)), -2);
}

TEST(SampleReaderFiles, WhatIsNoVideo) {
    const TemporaryFolder folder;
    const auto statusOf = [](const std::string& path) { return Open(path)->readerStatus(); };
    EXPECT_EQ(statusOf(folder / "none.mp4"), ReaderStatusSourceReaderFailed);
    EXPECT_EQ(statusOf(folder.Write("text.mp4", "no boxes")), ReaderStatusSourceReaderFailed);
    EXPECT_EQ(statusOf(folder.Path().string()), ReaderStatusSourceReaderFailed);
    EXPECT_EQ(statusOf(""), ReaderStatusSourceReaderFailed);
    EXPECT_EQ(statusOf(MadeMedia("mp4-audio-only.mp4")), ReaderStatusNativeTypeFailed);
    EXPECT_EQ(statusOf(MadeMedia("mp4-jpeg.mov")), ReaderStatusUnsupportedType);
    EXPECT_EQ(Read(*Open(folder / "none.mp4"), MediaTime(0)), nullptr);
}

TEST(SampleReaderFiles, TheFactoryMakesIt) {
    const std::unique_ptr<DecoderFactory> factory(DecoderFactory::Create());
    for (const char* name : {"h264/plain.mp4", "h264/open-groups.mov"}) {
        const std::unique_ptr<VideoSampleReader> reader(
            factory->CreateVideoSampleReader(MadeMedia(name), 0, false));
        ASSERT_NE(reader, nullptr);
        EXPECT_NE(dynamic_cast<WinH264SampleReader*>(reader.get()), nullptr);
        EXPECT_EQ(NumberAt(*reader, Frame(77)), 77);
    }
}

// Every real file answers its first picture, and one from further on, twice the same.
TEST(SampleReaderFiles, RealFiles) {
    const auto files = RealMedia("mp4");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    int opened = 0;
    for (const auto& file : files) {
        const auto reader = Open(file.string());
        if (reader->readerStatus() != ReaderStatusOk) {
            continue;
        }
        ++opened;
        const MediaTime middle(reader->StreamDuration() / 2, 10'000'000);
        const auto first = Read(*reader, MediaTime(0));
        EXPECT_NE(first, nullptr) << file;
        const auto there = Read(*reader, middle);
        const auto back = Read(*reader, MediaTime(0));
        const auto again = Read(*reader, middle);
        ASSERT_EQ(there != nullptr, again != nullptr) << file;
        if (there != nullptr) {
            EXPECT_EQ(PixelsOf(*there).bits, PixelsOf(*again).bits) << file;
        }
        if (first != nullptr && back != nullptr) {
            EXPECT_EQ(PixelsOf(*first).bits, PixelsOf(*back).bits) << file;
        }
    }
    EXPECT_GT(opened, 0);
}

} // namespace
} // namespace Zanthe
