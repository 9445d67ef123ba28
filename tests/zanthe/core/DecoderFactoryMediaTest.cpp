// What a host gets for whole files: the stream that it asks for, from the backend that is chosen.
#include "zanthe/core/DecoderFactory.h"

#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "tests/support/TestMedia.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"
#include "zanthe/h264/WinH264SampleReader.h"

namespace Zanthe {
namespace {

using Size = std::pair<int, int>;

std::unique_ptr<VideoSampleReader> Open(const std::string& name, int streamIndex) {
    const std::unique_ptr<DecoderFactory> factory(DecoderFactory::Create());
    return std::unique_ptr<VideoSampleReader>(
        factory->CreateVideoSampleReader(MadeMedia(name), streamIndex, false));
}

// 0 by 0 where the reader is not one over a decoder of the library's own.
Size DecodedSize(const std::string& name, int streamIndex) {
    const auto reader = Open(name, streamIndex);
    return dynamic_cast<VideoDecoderToVideoSampleReader*>(reader.get()) != nullptr
               ? Size(reader->outputWidth(), reader->outputHeight())
               : Size();
}

TEST(DecoderFactoryMedia, ARecordingGivesTheTrackThatIsAskedFor) {
    EXPECT_EQ(DecodedSize("classify/recording.brec", 0), Size(64, 48));
    EXPECT_EQ(DecodedSize("classify/recording.brec", 2), Size(32, 24));
    EXPECT_EQ(DecodedSize("classify/recording.brec", 3), Size(48, 32));
    EXPECT_EQ(DecodedSize("classify/recording.brec", 1), Size(0, 0)); // of sound
}

TEST(DecoderFactoryMedia, APngMovGivesTheTrackThatIsAskedFor) {
    EXPECT_EQ(DecodedSize("rec-png-third.mov", 2), Size(61, 45));
    EXPECT_EQ(DecodedSize("rec-png-third.mov", 3), Size(80, 60));
    EXPECT_EQ(DecodedSize("rec-png-third.mov", -1), Size(61, 45)); // the first that is PNG
}

// Its first tracks are none of PNG images, so it is no recording for them.
TEST(DecoderFactoryMedia, AMovIsPngByTheTrackThatIsAskedFor) {
    for (const int streamIndex : {0, 1}) {
        const auto reader = Open("rec-png-third.mov", streamIndex);
        EXPECT_NE(dynamic_cast<WinH264SampleReader*>(reader.get()), nullptr) << streamIndex;
    }
}

TEST(DecoderFactoryMedia, AMovOfH264GoesToItsReader) {
    const auto reader = Open("classify/h264.mov", 0);
    const auto* h264 = dynamic_cast<WinH264SampleReader*>(reader.get());
    ASSERT_NE(h264, nullptr);
    EXPECT_GT(h264->outputWidth(), 0);
}

} // namespace
} // namespace Zanthe
