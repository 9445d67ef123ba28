#include <memory>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/GifBytes.h"
#include "tests/support/TemporaryFolder.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"
#include "zanthe/core/WinDecoderFactory.h"
#include "zanthe/detection/DSMediaDetException.h"
#include "zanthe/images/WICAnimatedGIFVideoDecoder.h"

namespace Zanthe {
namespace {

class GifVideo : public testing::Test {
protected:
    std::unique_ptr<VideoSampleReader> Open(const std::string& name, const GifBytes& gif,
                                            int streamIndex = 0) {
        const std::string path = m_folder.Write(name, gif.Bytes());
        WinDecoderFactory factory(DecoderOutputFormat{}, nullptr, true);
        return std::unique_ptr<VideoSampleReader>(
            factory.CreateVideoSampleReader(path, streamIndex, false));
    }

    TemporaryFolder m_folder;
};

GifBytes TwoColours() {
    return GifBytes(2, 3).Control(10, 1).Frame(0, 0, 2, 3, 1).Control(10, 1).Frame(0, 0, 2, 3, 2);
}

TEST_F(GifVideo, TheFactoryPutsTheAdapterOverTheDecoder) {
    for (const char* name : {"a.gif", "a.GIF", "a.Gif"}) {
        for (const int stream : {0, 17, -5}) {
            const auto reader = Open(name, TwoColours(), stream);
            auto* adapter = dynamic_cast<VideoDecoderToVideoSampleReader*>(reader.get());
            ASSERT_NE(adapter, nullptr);
            EXPECT_NE(dynamic_cast<WICAnimatedGIFVideoDecoder*>(adapter->internalVideoDecoder()),
                      nullptr);
            EXPECT_EQ(reader->outputWidth(), 2);
            EXPECT_EQ(reader->outputHeight(), 3);
        }
    }
}

TEST_F(GifVideo, SamplesShowTheFrameOfTheirTime) {
    const auto reader = Open("a.gif", TwoColours());
    const auto pixel = [&](MediaTime time) {
        const std::unique_ptr<VideoSample> sample(
            reader->readVideoSample(time, nullptr, VideoSampleReaderFlags{}));
        EXPECT_EQ(sample->dataSize(), 2 * 3 * 4);
        return std::vector<int>(sample->data(), sample->data() + 4);
    };
    EXPECT_EQ(pixel(MediaTime(0)), (std::vector<int>{0, 0, 255, 255}));
    EXPECT_EQ(pixel(MediaTime(1, 10)), (std::vector<int>{0, 255, 0, 255}));
    EXPECT_EQ(pixel(MediaTime(99, 1000)), (std::vector<int>{0, 0, 255, 255}));
    EXPECT_EQ(pixel(MediaTime(1000)), (std::vector<int>{0, 255, 0, 255}));
    EXPECT_EQ(pixel(MediaTime(-1)), (std::vector<int>{0, 0, 255, 255}));
}

TEST_F(GifVideo, TheActualTimeIsLeftAlone) {
    const auto reader = Open("a.gif", TwoColours());
    auto& decoder = *dynamic_cast<VideoDecoderToVideoSampleReader&>(*reader).internalVideoDecoder();
    std::vector<unsigned char> buffer(2 * 3 * 4);
    double actualTime = -1.0;
    EXPECT_TRUE(decoder.readFrame(MediaTime(1, 10), buffer.data(), actualTime));
    EXPECT_EQ(actualTime, -1.0);
}

TEST_F(GifVideo, AScreenThatIsTooLarge) {
    const auto reader = Open("a.gif", GifBytes(32000, 32000).Frame(0, 0, 1, 1, 1));
    EXPECT_EQ(reader->outputWidth(), 4096);
    EXPECT_EQ(reader->outputHeight(), 4096);
    try {
        const std::unique_ptr<VideoSample> sample(
            reader->readVideoSample(MediaTime(0), nullptr, VideoSampleReaderFlags{}));
        FAIL();
    } catch (const std::runtime_error& failure) {
        EXPECT_STREQ(failure.what(), "WICAnimatedGIFLoader failed to initialize");
    }
}

TEST_F(GifVideo, AFileThatIsMissing) {
    WinDecoderFactory factory(DecoderOutputFormat{}, nullptr, true);
    EXPECT_THROW(delete factory.CreateVideoSampleReader(m_folder / "missing.gif", 0, false),
                 DSMediaDetException);
}

} // namespace
} // namespace Zanthe
