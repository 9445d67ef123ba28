#include "zanthe/containers/PNGMOVVideoDecoder.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/DecoderPictures.h"
#include "tests/support/FfmpegPictures.h"
#include "tests/support/PngBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/core/DecoderFactory.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"
#include "zanthe/h264/WinH264SampleReader.h"

using Zanthe::MediaTime;

namespace {

std::unique_ptr<PNGMOVVideoDecoder> Open(const std::string& name, std::int32_t streamIndex = -1) {
    return PNGMOVVideoDecoder::create(MadeMedia("rec-png-" + name), streamIndex);
}

// The text of what reading throws; "true" or "false" for what it answers.
std::string AnswerOf(PNGMOVVideoDecoder& decoder, MediaTime time) {
    try {
        return PictureAt(decoder, time).has_value() ? "true" : "false";
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
}

class PngPictures : public testing::TestWithParam<const char*> {};

// The alpha too.
TEST_P(PngPictures, AreThoseOfFfmpegByteByByte) {
    const std::string name = std::string(GetParam()) + ".mov";
    const auto decoder = Open(name);
    ASSERT_NE(decoder, nullptr);
    EXPECT_EQ(decoder->outputWidth(), 61);
    EXPECT_EQ(decoder->outputHeight(), 45);
    const auto pictures = ExpectAnyOrder(*decoder, MiddlesOf(8, 10));
    const auto expected = FfmpegPictures(MadeMedia("rec-png-" + name), 61, 45);
    ASSERT_EQ(expected.size(), 8U);
    for (std::size_t i = 0; i < 8; ++i) {
        EXPECT_TRUE(pictures[i].bits == expected[i].bits) << i;
    }
    EXPECT_NE(pictures[0].bits[3], 255); // it is an alpha, and no filling
}

INSTANTIATE_TEST_SUITE_P(Files, PngPictures,
                         testing::Values("rgba", "ya8", "interlaced", "fragmented"),
                         [](const auto& row) { return std::string(row.param); });

TEST(PngMov, SixteenBitsAreRoundedToEight) {
    const auto decoder = Open("rgba64be.mov");
    ASSERT_NE(decoder, nullptr);
    const auto expected = FfmpegPictures(MadeMedia("rec-png-rgba64be.mov"), 61, 45);
    for (int i = 0; i < 8; ++i) {
        const auto picture = PictureAt(*decoder, MediaTime(2 * i + 1, 20));
        ASSERT_TRUE(picture);
        EXPECT_GT(Psnr(*picture, expected[static_cast<std::size_t>(i)]), 45.0);
    }
}

class PngWithoutAlpha : public testing::TestWithParam<const char*> {};

TEST_P(PngWithoutAlpha, IsRefusedWhenItIsRead) {
    const auto decoder = Open(std::string(GetParam()) + ".mov");
    ASSERT_NE(decoder, nullptr);
    EXPECT_EQ(decoder->outputWidth(), 61);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(AnswerOf(*decoder, MediaTime(0)), "PNGMOVVideoDecoder: Unexpected pixel format");
    }
}

INSTANTIATE_TEST_SUITE_P(Files, PngWithoutAlpha, testing::Values("rgb24", "pal8", "gray"),
                         [](const auto& row) { return std::string(row.param); });

TEST(PngMov, AnyStreamIsTheFirstTrackOfPngImages) {
    for (const std::int32_t index : {-1, 4, 1000, -2147483647 - 1, 2147483647}) {
        const auto decoder = Open("third.mov", index);
        ASSERT_NE(decoder, nullptr) << index;
        EXPECT_EQ(decoder->outputWidth(), 61) << index;
    }
}

TEST(PngMov, AStreamWithinTheTracksIsTakenOrNone) {
    EXPECT_EQ(Open("third.mov", 0), nullptr);
    EXPECT_EQ(Open("third.mov", 1), nullptr);
    ASSERT_NE(Open("third.mov", 2), nullptr);
    const auto larger = Open("third.mov", 3);
    ASSERT_NE(larger, nullptr);
    EXPECT_EQ(larger->outputWidth(), 80);
    EXPECT_EQ(larger->outputHeight(), 60);
    const auto pictures = ExpectAnyOrder(*larger, MiddlesOf(8, 10));
    const auto expected = FfmpegPictures(MadeMedia("rec-png-third.mov"), 80, 60, "0:v:2");
    EXPECT_TRUE(pictures.at(7).bits == expected.at(7).bits);
}

// The edge case of the second track.
TEST(PngMov, TheSecondTrackMayBeTheOne) {
    EXPECT_NE(PNGMOVVideoDecoder::create(MadeMedia("classify/audio-then-png.mov"), -1), nullptr);
    EXPECT_EQ(PNGMOVVideoDecoder::create(MadeMedia("classify/audio-then-png.mov"), 0), nullptr);
    EXPECT_NE(PNGMOVVideoDecoder::create(MadeMedia("classify/audio-then-png.mov"), 1), nullptr);
}

TEST(PngMov, OtherFilesAreNone) {
    const TemporaryFolder folder;
    EXPECT_EQ(PNGMOVVideoDecoder::create(folder / "none.mov", -1), nullptr);
    EXPECT_EQ(PNGMOVVideoDecoder::create(folder.Write("text.mov", "text"), -1), nullptr);
    EXPECT_EQ(PNGMOVVideoDecoder::create(MadeMedia("classify/h264.mov"), -1), nullptr);
}

TEST(PngMov, OutsideTheTrackThereIsNoPicture) {
    const auto decoder = Open("rgba.mov");
    ASSERT_NE(decoder, nullptr);
    constexpr std::int64_t far = std::int64_t{1} << 62;
    for (const MediaTime& time : {MediaTime(8, 10), MediaTime(100), MediaTime(-1), MediaTime(far),
                                  MediaTime(-far), MediaTime(-1, 1000)}) {
        EXPECT_EQ(AnswerOf(*decoder, time), "false") << time;
    }
    EXPECT_EQ(AnswerOf(*decoder, MediaTime(7999, 10000)), "true");
    // Less than a unit before the start is cut off to the start.
    EXPECT_EQ(AnswerOf(*decoder, MediaTime(-1, 1'000'000)), "true");
}

TEST(PngMov, APictureLastsUntilTheNext) {
    // Picture n begins at n (n + 1) / 20 seconds.
    const auto decoder = Open("uneven.mov");
    ASSERT_NE(decoder, nullptr);
    const auto expected = FfmpegPictures(MadeMedia("rec-png-uneven.mov"), 61, 45);
    ASSERT_EQ(expected.size(), 8U);
    for (int i = 0; i < 8; ++i) {
        const auto begin = PictureAt(*decoder, MediaTime(i * (i + 1), 20));
        ASSERT_TRUE(begin);
        EXPECT_TRUE(begin->bits == expected[static_cast<std::size_t>(i)].bits) << i;
        if (i > 0) {
            const auto before = PictureAt(*decoder, MediaTime(i * (i + 1) * 500 - 1, 10'000));
            ASSERT_TRUE(before);
            EXPECT_TRUE(before->bits == expected[static_cast<std::size_t>(i - 1)].bits) << i;
        }
    }
}

// A second has 10240 units: the second picture begins at unit 1024.
TEST(PngMov, PartsOfAUnitAreCutOff) {
    const auto decoder = Open("rgba.mov");
    ASSERT_NE(decoder, nullptr);
    const auto at = [&](int tenthsOfUnits) {
        return PictureAt(*decoder, MediaTime(tenthsOfUnits, 102'400)).value().bits;
    };
    EXPECT_EQ(at(10'239), at(0));
    EXPECT_NE(at(10'240), at(0));
    EXPECT_EQ(at(10'249), at(10'240));
}

TEST(PngMov, TheTimeIsLeftAlone) {
    const auto decoder = Open("rgba.mov");
    std::vector<unsigned char> buffer(std::size_t{61} * 45 * 4);
    double actualTime = 7.5;
    EXPECT_TRUE(decoder->readFrame(MediaTime(1, 4), buffer.data(), actualTime));
    EXPECT_FALSE(decoder->readFrame(MediaTime(9), buffer.data(), actualTime));
    EXPECT_EQ(actualTime, 7.5);
}

// A file whose first sample is these bytes, then zeros, and whose others are as they were.
class DamagedSample : public testing::Test {
protected:
    std::unique_ptr<PNGMOVVideoDecoder> OpenWith(const std::string& sample, std::size_t at = 0) {
        std::string bytes = ReadWholeFile(MadeMedia("rec-png-rgba.mov"));
        std::size_t begin = bytes.find("\x89PNG");
        for (std::size_t i = 0; i < at; ++i) {
            begin = bytes.find("\x89PNG", begin + 1);
        }
        const std::size_t end = bytes.find("IEND", begin) + 8;
        bytes.replace(begin, end - begin,
                      (sample + std::string(end - begin, '\0')).substr(0, end - begin));
        return PNGMOVVideoDecoder::create(m_folder.Write("a.mov", bytes), -1);
    }

    // A picture without a pixel of its own.
    static std::string Picture(int width, int height, bool complete = true) {
        const std::string rows(
            complete ? static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4 : 5,
            '\x40');
        return PngBytes({.width = width, .height = height}, rows);
    }

    TemporaryFolder m_folder;
};

TEST_F(DamagedSample, WhatIsNoPictureThrows) {
    const auto decoder = OpenWith("no picture");
    ASSERT_NE(decoder, nullptr);
    EXPECT_EQ(AnswerOf(*decoder, MediaTime(0)),
              "PNGMOVVideoDecoder: Error creating bitmap from encoded image");
    EXPECT_EQ(AnswerOf(*decoder, MediaTime(1, 10)), "true");
}

TEST_F(DamagedSample, APictureThatIsCutOffThrows) {
    const auto decoder = OpenWith(Picture(61, 45, false));
    EXPECT_EQ(AnswerOf(*decoder, MediaTime(0)), "PNGMOVVideoDecoder: bitmap lock faied");
}

TEST_F(DamagedSample, ASmallerPictureThrows) {
    for (const auto& [width, height] : {std::pair(60, 45), std::pair(61, 44), std::pair(1, 1)}) {
        const auto decoder = OpenWith(Picture(width, height));
        EXPECT_EQ(AnswerOf(*decoder, MediaTime(0)), "PNGMOVVideoDecoder: bitmap lock faied");
    }
}

TEST_F(DamagedSample, OfALargerPictureTheUpperLeftIsShown) {
    const auto decoder = OpenWith(Picture(70, 50));
    const auto picture = PictureAt(*decoder, MediaTime(0));
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->bits, std::vector<std::uint8_t>(std::size_t{61} * 45 * 4, 0x40));
}

TEST_F(DamagedSample, AHugePictureIsRefusedBeforeItTakesMemory) {
    const auto decoder = OpenWith(PngBytes({.width = 1 << 20, .height = 1 << 20}, ""));
    EXPECT_EQ(AnswerOf(*decoder, MediaTime(0)),
              "PNGMOVVideoDecoder: Error creating bitmap from encoded image");
}

// The buffer still has the end of a longer picture then; nothing of it may show.
TEST_F(DamagedSample, ACutPictureDoesNotGoOnInTheOneBefore) {
    std::string bytes = ReadWholeFile(MadeMedia("rec-png-rgba.mov"));
    const std::size_t size = bytes.find("stsz");
    ASSERT_NE(size, std::string::npos);
    // The size of the third sample: 4 bytes of flags, a common size, a count, and two sizes before.
    const std::size_t third = size + 24;
    const auto byteAt = [&](std::size_t at) {
        return static_cast<unsigned int>(static_cast<unsigned char>(bytes[at]));
    };
    const unsigned int whole = byteAt(third + 2) << 8 | byteAt(third + 3);
    bytes[third + 2] = static_cast<char>(whole / 2 >> 8);
    bytes[third + 3] = static_cast<char>(whole / 2);
    const auto decoder = PNGMOVVideoDecoder::create(m_folder.Write("a.mov", bytes), -1);
    ASSERT_NE(decoder, nullptr);
    EXPECT_EQ(AnswerOf(*decoder, MediaTime(5, 20)), "PNGMOVVideoDecoder: bitmap lock faied");
    for (int i = 0; i < 2; ++i) {
        AnswerOf(*decoder, MediaTime(i, 10));
        EXPECT_EQ(AnswerOf(*decoder, MediaTime(5, 20)), "PNGMOVVideoDecoder: bitmap lock faied");
    }
}

TEST_F(DamagedSample, AFileThatIsCutAnywhereGivesPicturesOrNone) {
    const std::string whole = ReadWholeFile(MadeMedia("rec-png-fragmented.mov"));
    std::size_t pictures = 0;
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 60) {
        const auto decoder =
            PNGMOVVideoDecoder::create(m_folder.Write("a.mov", whole.substr(0, size)), -1);
        for (int i = 0; decoder != nullptr && i < 8; ++i) {
            pictures += AnswerOf(*decoder, MediaTime(i, 10)) == "true" ? 1 : 0;
        }
    }
    EXPECT_GT(pictures, 100U);
}

std::unique_ptr<Zanthe::VideoSampleReader> OpenReader(const std::string& path, int stream) {
    const std::unique_ptr<Zanthe::DecoderFactory> factory(Zanthe::DecoderFactory::Create());
    return std::unique_ptr<Zanthe::VideoSampleReader>(
        factory->CreateVideoSampleReader(path, stream, false));
}

TEST(PngMovRoute, TheFactoryTakesPngImagesAndLeavesTheRest) {
    const auto png = OpenReader(MadeMedia("rec-png-third.mov"), 3);
    auto* adapter = dynamic_cast<Zanthe::VideoDecoderToVideoSampleReader*>(png.get());
    ASSERT_NE(adapter, nullptr);
    EXPECT_NE(dynamic_cast<PNGMOVVideoDecoder*>(adapter->internalVideoDecoder()), nullptr);
    EXPECT_EQ(png->outputWidth(), 80);
    const auto h264 = OpenReader(MadeMedia("classify/h264.mov"), 0);
    EXPECT_NE(dynamic_cast<Zanthe::WinH264SampleReader*>(h264.get()), nullptr);
}

} // namespace
