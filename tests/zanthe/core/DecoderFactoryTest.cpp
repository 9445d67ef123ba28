// What a host gets for a file: its backend, or the failure of that.
#include "zanthe/core/DecoderFactory.h"

#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/GifBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "zanthe/core/TextException.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"
#include "zanthe/core/WinDecoderFactory.h"
#include "zanthe/detection/DSMediaDetException.h"
#include "zanthe/h264/WinH264SampleReader.h"

namespace Zanthe {
namespace {

std::unique_ptr<VideoSampleReader> Open(const std::string& path, bool useMediaFoundation = true) {
    const std::unique_ptr<DecoderFactory> factory(
        DecoderFactory::Create(DecoderOutputFormat::DeviceArgb32, nullptr, useMediaFoundation));
    return std::unique_ptr<VideoSampleReader>(factory->CreateVideoSampleReader(path, 0, false));
}

// The text that DirectShow throws for `path`, which is no exception object.
std::string GraphFailureOf(const std::string& path, bool useMediaFoundation = true) {
    try {
        Open(path, useMediaFoundation);
    } catch (const char* text) {
        return text;
    }
    return "nothing thrown";
}

static_assert(static_cast<int>(DecoderOutputFormat::DeviceArgb32) == 0);
static_assert(static_cast<int>(DecoderOutputFormat::MemoryArgb32) == 1);
static_assert(static_cast<int>(DecoderOutputFormat::MemoryNv12) == 2);
static_assert(sizeof(DecoderOutputFormat) == 4);

TEST(DecoderFactory, MakesTheFactoryOfThisPlatform) {
    const std::unique_ptr<DecoderFactory> plain(DecoderFactory::Create());
    const auto* made = dynamic_cast<const WinDecoderFactory*>(plain.get());
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->OutputFormat(), DecoderOutputFormat::DeviceArgb32);
    EXPECT_TRUE(made->UsesMediaFoundation());
    for (const int format : {0, 1, 2}) {
        const std::unique_ptr<DecoderFactory> given(
            DecoderFactory::Create(static_cast<DecoderOutputFormat>(format), nullptr, format == 1));
        made = dynamic_cast<const WinDecoderFactory*>(given.get());
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(static_cast<int>(made->OutputFormat()), format);
        EXPECT_EQ(made->UsesMediaFoundation(), format == 1);
    }
}

constexpr const char* NoGraph = "Could not get the MediaControl interface from the FilterGraph";

// A reader that cannot be opened is one all the same; it gives no samples.
TEST(DecoderFactory, AFileThatTheH264ReaderCannotOpen) {
    for (const char* path : {"none.mp4", "none.mov"}) {
        const auto reader = Open(path);
        ASSERT_NE(reader, nullptr);
        EXPECT_EQ(reader->outputWidth(), 0);
        EXPECT_EQ(reader->readVideoSample(MediaTime(0), {}, VideoSampleReaderFlags::None), nullptr);
    }
}

TEST(DecoderFactory, AnH264ReaderHasTheFormatOfItsFactory) {
    for (const auto format : {DecoderOutputFormat::MemoryArgb32, DecoderOutputFormat::MemoryNv12}) {
        const std::unique_ptr<DecoderFactory> factory(
            DecoderFactory::Create(format, nullptr, true));
        const std::unique_ptr<VideoSampleReader> reader(
            factory->CreateVideoSampleReader("none.mp4", 0, false));
        const auto* h264 = dynamic_cast<const WinH264SampleReader*>(reader.get());
        ASSERT_NE(h264, nullptr);
        EXPECT_EQ(h264->outputFormat(), format);
    }
}

TEST(DecoderFactory, AGifOfAnyNameOpens) {
    const TemporaryFolder folder;
    const std::string bytes = GifBytes(4, 2).Frame(0, 0, 4, 2, 1).Bytes();
    for (const char* name : {"a.GIF", "\u00e9\u4e16.gif", "\xff.gif"}) {
        const auto reader = Open(folder.Write(name, bytes));
        ASSERT_NE(dynamic_cast<VideoDecoderToVideoSampleReader*>(reader.get()), nullptr) << name;
        EXPECT_EQ(reader->outputWidth(), 4);
        EXPECT_EQ(reader->outputHeight(), 2);
    }
}

TEST(DecoderFactory, AFileWithoutAGraphThrowsItsBareText) {
    EXPECT_EQ(GraphFailureOf("none.avi"), NoGraph);
    EXPECT_EQ(GraphFailureOf("none"), NoGraph);
    EXPECT_EQ(GraphFailureOf("none.mp4", false), NoGraph);
}

TEST(DecoderFactory, AGifThatCannotBeReadThrows) {
    const TemporaryFolder folder;
    try {
        Open(folder.Write("text.gif", "no GIF"));
        FAIL();
    } catch (const DSMediaDetException& error) {
        EXPECT_STREQ(error.what(), "Unable to create decoder");
    }
}

TEST(DecoderFactory, ALegacyRecordingThatIsNoStorageThrowsAPlainException) {
    const TemporaryFolder folder;
    try {
        Open(folder.Write("text.orirec", "no compound file") + "!Screen_Stream.avi");
        FAIL();
    } catch (const TextException& error) {
        EXPECT_STREQ(error.what(),
                     "OrirecScreenVideoDecoder - failed to open structured-storage file!");
    }
    try {
        Open(folder / "none.orirec" + "!Screen_Stream.avi");
        FAIL();
    } catch (const TextException& error) {
        EXPECT_STREQ(error.what(),
                     "OrirecScreenVideoDecoder - orirec is not a structured-storage file!");
    }
}

TEST(DecoderFactory, ARecordingThatCannotBeReadHasNoPixels) {
    const TemporaryFolder folder;
    const auto reader = Open(folder.Write("text.brec", "no recording"));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->outputWidth(), 0);
    EXPECT_EQ(reader->outputHeight(), 0);
    const std::unique_ptr<VideoSample> sample(
        reader->readVideoSample(MediaTime(1), {}, VideoSampleReaderFlags::None));
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(sample->dataSize(), 0);
}

} // namespace
} // namespace Zanthe
