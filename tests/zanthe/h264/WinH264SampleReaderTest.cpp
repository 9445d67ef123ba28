#include "zanthe/h264/WinH264SampleReader.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TestMedia.h"
#include "tests/zanthe/h264/HeadersAlone.h"
#include "tests/zanthe/h264/SampleReaderFixture.h"
#include "tests/zanthe/h264/ScriptedTransform.h"
#include "zanthe/h264/MFVideoSample.h"
#include "zanthe/h264/WinH264DurationUtil.h"

using testing::ElementsAre;

namespace Zanthe {
namespace {

TEST_F(SampleReader, SamplesTellTheirSizeAndColour) {
    MFSetAttributeSize(m_script->currentType.Get(), MF_MT_FRAME_SIZE, 64, 56); // padded
    const auto reader = Open();
    const auto sample = com::ComPtr<IMFSample>::Attach(reader->readSample(MediaTime(0), NoFlags));
    UINT32 width = 0;
    UINT32 height = 0;
    EXPECT_EQ(MFGetAttributeSize(sample.Get(), MF_MT_FRAME_SIZE, &width, &height), S_OK);
    EXPECT_EQ(width, 64U);
    EXPECT_EQ(height, 56U);
    EXPECT_EQ(ColorConversionInfo(sample.Get()).matrix, 2U);
    const std::unique_ptr<VideoSample> video(reader->readVideoSample(MediaTime(0), {}, NoFlags));
    EXPECT_EQ(video->height(), 48);
    EXPECT_EQ(video->bufferHeight(), 56);
    EXPECT_EQ(video->bytesPerRow(), 256);
}

TEST_F(SampleReader, EverySampleTellsItsColour) {
    const auto reader = Open(Memory, MadeMedia("h264/plain.mp4"));
    for (const std::int64_t units : {50, 350, 150}) {
        const auto sample = com::ComPtr<IMFSample>::Attach(
            reader->readSample(MediaTime(units, 10'000'000), NoFlags));
        ASSERT_TRUE(sample);
        EXPECT_EQ(ColorConversionInfo(sample.Get()), reader->colorConversionInfo());
        EXPECT_EQ(MFGetAttributeUINT64(sample.Get(), MF_MT_FRAME_SIZE, 0),
                  Pack2UINT32AsUINT64(64, 48));
    }
}

TEST_F(SampleReader, TheCallersMemoryIsNotPrepared) {
    bool prepared = false;
    const std::unique_ptr<VideoSample> sample(Open()->readVideoSample(
        MediaTime(0), [&](unsigned char*, int) { prepared = true; }, NoFlags));
    EXPECT_NE(sample, nullptr);
    EXPECT_FALSE(prepared);
}

TEST_F(SampleReader, TheLogsAreTheFinders) {
    const auto reader = Open();
    com::ComPtr<IMFSample>::Attach(reader->readSample(MediaTime(0), NoFlags)).Reset();
    com::ComPtr<IMFSample>::Attach(reader->readSample(MediaTime(0), NoFlags)).Reset();
    EXPECT_THAT(reader->readSampleOps(), ElementsAre(ReadSampleOp::ReturnedCurrentSample,
                                                     ReadSampleOp::ReturnedPreviousSample));
    EXPECT_THAT(reader->attempts(), ElementsAre(0, 0));
    EXPECT_TRUE(reader->NeedToSeekBetweenTimes(1, 0));
}

TEST_F(SampleReader, OneReferenceIsHandedOver) {
    const auto reader = Open();
    const auto own = com::ComPtr<IMFSample>::Attach(reader->readSample(MediaTime(0), NoFlags));
    EXPECT_EQ(References(own.Get()), 2U); // the finder's, and the caller's
    {
        const std::unique_ptr<VideoSample> video(
            reader->readVideoSample(MediaTime(0), {}, NoFlags));
        EXPECT_EQ(References(own.Get()), 3U);
    }
    EXPECT_EQ(References(own.Get()), 2U);
}

class ConvertingReader : public SampleReader {
protected:
    ConvertingReader() {
        m_script->currentType->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_NV12);
        m_script->bufferBytes = 64 * 48 * 3 / 2;
    }
};

TEST_F(ConvertingReader, AConvertedSampleIsTheCallersAlone) {
    auto reader = Open(Nv12);
    for (int i = 0; i < 3; ++i) {
        const std::unique_ptr<VideoSample> video(
            reader->readVideoSample(MediaTime(0), {}, NoFlags));
        ASSERT_NE(video, nullptr);
        EXPECT_EQ(References(dynamic_cast<MFVideoSample&>(*video).imfSample()), 1U);
        const auto sample =
            com::ComPtr<IMFSample>::Attach(reader->readSample(MediaTime(0), NoFlags));
        EXPECT_EQ(References(sample.Get()), 1U);
    }
    EXPECT_EQ(*m_script->living, 1); // what it was converted from
    reader.reset();
    EXPECT_EQ(*m_script->living, 0);
}

TEST_F(ConvertingReader, EndsTheDeviceLast) {
    std::vector<std::string> ended;
    const auto note = [&](const char* what) {
        return [&ended, what] { ended.emplace_back(what); };
    };
    const auto transform = std::make_shared<TransformScript>();
    transform->onEnd = note("converter");
    m_script->onSampleEnd = note("sample");
    m_script->onReaderEnd = note("source reader");
    m_device = com::MakeOwned<ScriptedDeviceManager>();
    m_device->onEnd = note("device");
    const ScriptedConverters converters(transform);
    auto reader = Open(Nv12);
    com::ComPtr<IMFSample>::Attach(reader->readSample(MediaTime(0), NoFlags)).Reset();
    m_device.Reset();
    ended.clear(); // a second source reader told the duration
    reader.reset();
    EXPECT_THAT(ended, ElementsAre("sample", "converter", "source reader", "device"));
    m_script->onReaderEnd = {};
}

TEST_F(SampleReader, AMillionReadsLeaveNothingBehind) {
    auto reader = Open();
    const auto own = com::ComPtr<IMFSample>::Attach(reader->readSample(MediaTime(0), NoFlags));
    for (int i = 0; i < 1'000'000; ++i) {
        delete reader->readVideoSample(MediaTime(0), {}, NoFlags);
    }
    EXPECT_EQ(References(own.Get()), 2U);
    EXPECT_EQ(*m_script->living, 1);
    reader.reset();
    EXPECT_EQ(References(own.Get()), 1U);
}

TEST_F(SampleReader, ASampleOutlivesItsReader) {
    auto reader = Open();
    const std::unique_ptr<VideoSample> video(reader->readVideoSample(MediaTime(0), {}, NoFlags));
    reader.reset();
    video->lockData();
    EXPECT_NE(video->data(), nullptr);
    video->unlockData();
}

TEST_F(SampleReader, TheDurationIsTheSourcesWhereTheHeadersTellNone) {
    m_script->presentationDuration = 777;
    EXPECT_EQ(Open()->StreamDuration(), 777);
    EXPECT_EQ(m_opening.requests.size(), 2U); // a second reader, without attributes
    EXPECT_FALSE(m_opening.requests.back().processesVideo);
    m_script->presentationDuration = 0;
    const auto reader = Open();
    EXPECT_EQ(reader->StreamDuration(), 0);
    const std::unique_ptr<VideoSample> first(reader->readVideoSample(MediaTime(0), {}, NoFlags));
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(reader->readVideoSample(MediaTime(1), {}, NoFlags), nullptr);
}

TEST_F(SampleReader, WithoutASecondReaderThereIsNoDuration) {
    m_opening.mostReaders = 1;
    const auto reader = Open();
    EXPECT_EQ(reader->readerStatus(), ReaderStatusOk);
    EXPECT_EQ(reader->StreamDuration(), 0);
    EXPECT_EQ(m_opening.requests.size(), 2U);
}

// The headers are there, and say 0.
TEST_F(SampleReader, ADurationOfZeroIsTheSourcesToo) {
    m_script->presentationDuration = 777;
    const std::string path = m_folder.Write("zero.mp4", WithoutSamples(0));
    EXPECT_EQ(WinH264DurationUtil::GetRefTimeDuration(path), 0);
    EXPECT_EQ(Open(Memory, path)->StreamDuration(), 777);
}

TEST_F(SampleReader, TheDurationOfAnMp4FileIsItsHeaders) {
    EXPECT_EQ(Open(Memory, MadeMedia("h264/plain.mp4"))->StreamDuration(), 40'000'000);
    EXPECT_EQ(m_opening.requests.size(), 1U);
}

TEST_F(SampleReader, ElementaryStreamsGoNoFurther) {
    m_script->nativeType->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_H264_ES);
    const auto reader = Open(Memory, "elementary.h264");
    delete reader->readVideoSample(MediaTime(0), {}, NoFlags);
    constexpr MediaTime later(50, 1'000'000);
    for (const auto& read :
         {std::function<void()>([&] { reader->readSample(later, NoFlags); }),
          std::function<void()>([&] { reader->readVideoSample(later, {}, NoFlags); })}) {
        try {
            read();
            FAIL();
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "Couldn't find key frame times");
        }
    }
}

TEST_F(SampleReader, AStreamThatGoesAwayIsAFailedRead) {
    // The first answer is for the opening, the second for the finder.
    m_script->outcome = [this](int) {
        m_script->nativeTypeResult = MF_E_INVALIDSTREAMNUMBER;
        return ReadOutcome::Sample;
    };
    EXPECT_EQ(Open()->readerStatus(), ReaderStatusFirstReadFailed);
    EXPECT_EQ(*m_script->living, 0);
}

} // namespace
} // namespace Zanthe
