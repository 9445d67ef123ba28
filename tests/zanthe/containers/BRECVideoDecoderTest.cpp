#include "zanthe/containers/BRECVideoDecoder.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/brec/Reader.h"
#include "tests/support/DecoderPictures.h"
#include "tests/support/FfmpegPictures.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "zanthe/core/DecoderFactory.h"
#include "zanthe/core/VideoDecoderToVideoSampleReader.h"

using testing::ElementsAre;
using Zanthe::MediaTime;

namespace {

// A track of pictures of 3 x 2, ten a second, that paints the number of its picture and remembers
// what it was asked.
class ScriptedTrack final : public BREC::MP4TrackReader {
public:
    struct Call {
        double seconds;
        unsigned int byteCount;
        double outTime;
        double previousTime;
        double zero, otherZero;

        bool operator==(const Call&) const = default;
    };

    std::uint32_t size[2] = {3, 2};
    bool fails = false;
    bool lies = false; // says that it failed, and shows a picture
    std::vector<Call> calls;

    // BREC::MP4TrackReader
    int type() const override { return BREC::VideoTrack; }

    std::string codec() const override { return "avc1"; }

    std::uint32_t width() const override { return size[0]; }

    std::uint32_t height() const override { return size[1]; }

    std::uint64_t lengthInFrames() const override { return 10; }

    unsigned int fillAudioBuffer(std::uint64_t, unsigned int, unsigned char*) override { return 0; }

    bool decodeFrameAtTime(double seconds, unsigned char* buffer, unsigned int byteCount,
                           double* outTime, double previousTime, double zero,
                           double otherZero) override {
        calls.push_back({seconds, byteCount, *outTime, previousTime, zero, otherZero});
        if (fails) {
            return false;
        }
        std::memset(buffer, static_cast<int>(seconds * 10), byteCount);
        *outTime = static_cast<int>(seconds * 10) / 10.0;
        return !lies;
    }
};

class BrecDecoder : public testing::Test {
protected:
    std::unique_ptr<BRECVideoDecoder> Make(std::int32_t trackIndex) {
        auto decoder = std::make_unique<BRECVideoDecoder>("/x/a.brec", trackIndex);
        decoder->initialize([&](const std::string& path, const BREC::AudioFormat& format,
                                BREC::AACDecoderFactory* aacDecoders) {
            EXPECT_EQ(path, "/x/a.brec");
            EXPECT_EQ(format.sampleRate(), 44100);
            EXPECT_EQ(format.channelCount(), 2);
            EXPECT_EQ(aacDecoders, nullptr);
            return reader;
        });
        return decoder;
    }

    boost::shared_ptr<ScriptedTrack> first = boost::make_shared<ScriptedTrack>();
    boost::shared_ptr<ScriptedTrack> second = boost::make_shared<ScriptedTrack>();
    boost::shared_ptr<BREC::Reader> reader = boost::make_shared<BREC::Reader>(
        std::vector<boost::shared_ptr<BREC::MP4TrackReader>>{first, second});
    std::vector<unsigned char> buffer = std::vector<unsigned char>(24, 0xEE);
};

TEST_F(BrecDecoder, TakesTheTrackOfItsIndex) {
    second->size[0] = 1;
    const auto decoder = Make(1);
    EXPECT_EQ(decoder->outputWidth(), 1);
    EXPECT_EQ(decoder->outputHeight(), 2);
    double actualTime = -1.0;
    decoder->readFrame(MediaTime(1, 2), buffer.data(), actualTime);
    EXPECT_TRUE(first->calls.empty());
    EXPECT_THAT(second->calls, ElementsAre(ScriptedTrack::Call{0.5, 8, -1.0, -1.0, 0.0, 0.0}));
}

TEST_F(BrecDecoder, TheTimeGoesInAndOut) {
    const auto decoder = Make(0);
    double actualTime = -1.0;
    EXPECT_TRUE(decoder->readFrame(MediaTime(1, 4), buffer.data(), actualTime));
    EXPECT_EQ(actualTime, 0.2);
    EXPECT_EQ(buffer, std::vector<unsigned char>(24, 2));
    EXPECT_TRUE(decoder->readFrame(MediaTime(1, 3), buffer.data(), actualTime));
    EXPECT_EQ(actualTime, 0.3);
    EXPECT_THAT(first->calls, ElementsAre(ScriptedTrack::Call{0.25, 24, -1.0, -1.0, 0.0, 0.0},
                                          ScriptedTrack::Call{1.0 / 3, 24, -1.0, 0.2, 0.0, 0.0}));
}

TEST_F(BrecDecoder, AFailureShowsInTheTimeAlone) {
    const auto decoder = Make(0);
    double actualTime = 0.4;
    first->fails = true;
    EXPECT_TRUE(decoder->readFrame(MediaTime(1), buffer.data(), actualTime));
    EXPECT_EQ(actualTime, -1.0);
    first->fails = false;
    EXPECT_TRUE(decoder->readFrame(MediaTime(1), buffer.data(), actualTime));
    EXPECT_EQ(actualTime, 1.0);
    first->lies = true;
    EXPECT_TRUE(decoder->readFrame(MediaTime(2), buffer.data(), actualTime));
    EXPECT_EQ(actualTime, 2.0);
}

TEST_F(BrecDecoder, WithoutATrackThereAreNoPixels) {
    const auto expectNone = [&](BRECVideoDecoder& decoder) {
        EXPECT_EQ(decoder.outputWidth(), 0);
        EXPECT_EQ(decoder.outputHeight(), 0);
        double actualTime = 0.5;
        EXPECT_TRUE(decoder.readFrame(MediaTime(1), buffer.data(), actualTime));
        EXPECT_EQ(actualTime, -1.0);
        EXPECT_EQ(buffer, std::vector<unsigned char>(24, 0xEE));
    };
    for (const std::int32_t index : {-1, 2, 1000, -2147483647 - 1, 2147483647}) {
        expectNone(*Make(index));
    }
    reader.reset();
    expectNone(*Make(0));
    BRECVideoDecoder unopened("/x/a.brec", 0);
    expectNone(unopened);
}

TEST_F(BrecDecoder, ATrackOfMorePixelsThanCanBeCountedIsNone) {
    first->size[0] = 1 << 16;
    first->size[1] = 1 << 16;
    EXPECT_EQ(Make(0)->outputWidth(), 0);
    first->size[0] = 0xFFFFFFFF;
    first->size[1] = 1;
    EXPECT_EQ(Make(0)->outputWidth(), 0);
}

TEST_F(BrecDecoder, OpensAnewWhenAskedTo) {
    const auto decoder = Make(0);
    decoder->initialize([](const std::string&, const BREC::AudioFormat&, BREC::AACDecoderFactory*) {
        return boost::shared_ptr<BREC::Reader>{};
    });
    EXPECT_EQ(decoder->outputWidth(), 0);
}

class RecordedTrack : public testing::TestWithParam<int> {};

TEST_P(RecordedTrack, EveryPictureIsExactInAnyOrder) {
    const std::string path = MadeMedia("rec-tracks.brec");
    BRECVideoDecoder decoder(path, GetParam());
    decoder.initialize();
    ASSERT_GT(decoder.outputWidth(), 0);
    const auto expected = FfmpegPictures(path, decoder.outputWidth(), decoder.outputHeight(),
                                         "0:" + std::to_string(GetParam()));
    ExpectLikeness(ExpectAnyOrder(decoder, MiddlesOf(40, 10)), expected);
}

INSTANTIATE_TEST_SUITE_P(Tracks, RecordedTrack, testing::Values(0, 2, 4));

TEST(RecordingRoute, TheFactoryOpensATrackWhateverTheCaseOfTheName) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.BREC", ReadWholeFile(MadeMedia("rec-tracks.brec")));
    const std::unique_ptr<Zanthe::DecoderFactory> factory(Zanthe::DecoderFactory::Create());
    const std::unique_ptr<Zanthe::VideoSampleReader> reader(
        factory->CreateVideoSampleReader(path, 2, false));
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(reader->outputWidth(), 46);
    auto* adapter = dynamic_cast<Zanthe::VideoDecoderToVideoSampleReader*>(reader.get());
    ASSERT_NE(adapter, nullptr);
    EXPECT_NE(dynamic_cast<BRECVideoDecoder*>(adapter->internalVideoDecoder()), nullptr);
}

} // namespace
