#include "zanthe/h264/WinH264SampleReader.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <boost/rational.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/win32/Version.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"
#include "tests/zanthe/h264/ParameterSets.h"
#include "tests/zanthe/h264/ScriptedOpening.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace Zanthe {
namespace {

constexpr auto Device = DecoderOutputFormat::DeviceArgb32;
constexpr auto Memory = DecoderOutputFormat::MemoryArgb32;
constexpr auto Nv12 = DecoderOutputFormat::MemoryNv12;
constexpr auto NoFlags = VideoSampleReaderFlags::None;

// The headers alone of a file whose one track has this size and transform.
std::string Headers(std::int32_t width, std::int32_t height,
                    const boxes::Elements& matrix = boxes::Upright) {
    boxes::TrackHeader header;
    header.width = static_cast<std::uint32_t>(width) << 16;
    header.height = static_cast<std::uint32_t>(height) << 16;
    header.matrix = matrix;
    return boxes::Movie(boxes::Track(boxes::TrackHeaderBox(header), "vide",
                                     boxes::SampleDescriptionBox(0, boxes::Zeros(8))));
}

class SampleReader : public testing::Test {
protected:
    SampleReader() { m_script->presentationDuration = 1000; }

    void TearDown() override { win32::SetSystemVersion({}); }

    // Any path but an MP4 file's: it has no geometry and no table.
    std::unique_ptr<WinH264SampleReader> Open(DecoderOutputFormat format = Memory,
                                              const std::string& path = "any.avi") {
        return std::unique_ptr<WinH264SampleReader>(
            WinH264SampleReader::create(path, 0, format, m_device.Get()));
    }

    std::unique_ptr<WinH264SampleReader> OpenWithHeaders(const std::string& headers,
                                                         DecoderOutputFormat format = Memory) {
        return Open(format, m_folder.Write(std::to_string(m_files++) + ".mp4", headers));
    }

    void ExpectStatus(ReaderStatus status) {
        const auto reader = Open();
        EXPECT_EQ(reader->readerStatus(), status);
        EXPECT_EQ(reader->readSample(MediaTime(0), NoFlags), nullptr);
        EXPECT_EQ(reader->readVideoSample(MediaTime(0), {}, NoFlags), nullptr);
        EXPECT_EQ(reader->StreamDuration(), -1);
        EXPECT_THAT(reader->readSampleOps(), IsEmpty());
        EXPECT_THAT(reader->readSampleFailures(), IsEmpty());
        EXPECT_THAT(reader->attempts(), IsEmpty());
        try {
            reader->NeedToSeekBetweenTimes(0, 1);
            ADD_FAILURE();
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "WinH264SampleReader: No sample finder!");
        }
    }

    TemporaryFolder m_folder;
    int m_files = 0;
    com::ComPtr<ScriptedDeviceManager> m_device;
    Script m_script = MakeScript(Pictures(10, 100));
    ScriptedOpening m_opening{m_script};
};

TEST_F(SampleReader, Opens) {
    const auto reader = Open();
    EXPECT_EQ(reader->readerStatus(), ReaderStatusOk);
    EXPECT_EQ(reader->outputWidth(), 64);
    EXPECT_EQ(reader->outputHeight(), 48);
    EXPECT_FALSE(reader->requiresFlagSometimesToActuallyGetSamples());
    EXPECT_FALSE(reader->requiresMediaOrientationTransformation());
    EXPECT_EQ(reader->nativeMediaTypeInfo().subtype, MFVideoFormat_H264);
    EXPECT_EQ(reader->nativeMediaTypeInfo().frameRateNumerator, 30U);
    EXPECT_EQ(m_script->subtypeSet, MFVideoFormat_ARGB32);
    EXPECT_EQ(m_script->streamsRead.front(), 1U); // the one that is selected
    EXPECT_EQ(m_script->reads, 1);
}

TEST_F(SampleReader, Statuses) {
    m_opening.result = E_FAIL;
    ExpectStatus(ReaderStatusSourceReaderFailed);
    m_opening.result = S_OK;
    m_script->nativeTypeResult = E_FAIL;
    ExpectStatus(ReaderStatusNativeTypeFailed);
    m_script->nativeTypeResult = S_OK;
    m_script->setTypeResult = E_FAIL;
    ExpectStatus(ReaderStatusSetTypeFailed);
    m_script->setTypeResult = S_OK;
    m_script->deselectResult = E_FAIL;
    ExpectStatus(ReaderStatusStreamSelectFailed);
    m_script->deselectResult = S_OK;
    m_script->selectResult = E_FAIL;
    ExpectStatus(ReaderStatusStreamSelectFailed);
    m_script->selectResult = S_OK;
    for (const ReadOutcome outcome : {ReadOutcome::Failed, ReadOutcome::Tick}) {
        m_script->outcome = [=](int) { return outcome; };
        ExpectStatus(ReaderStatusFirstReadFailed);
    }
}

TEST_F(SampleReader, OnlySomeVideoIsSupported) {
    for (const GUID& subtype : {MFVideoFormat_M4S2, MFVideoFormat_MP4V, MFVideoFormat_H264,
                                MFVideoFormat_H264_ES, MFVideoFormat_HEVC, MFVideoFormat_HEVC_ES}) {
        m_script->nativeType->SetGUID(MF_MT_SUBTYPE, subtype);
        EXPECT_EQ(Open()->readerStatus(), ReaderStatusOk);
    }
    for (const GUID& subtype : {MFVideoFormat_WMV3, MFVideoFormat_MJPG, MFVideoFormat_NV12}) {
        m_script->nativeType->SetGUID(MF_MT_SUBTYPE, subtype);
        ExpectStatus(ReaderStatusUnsupportedType);
    }
    m_script->nativeType->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_H264);
    m_script->nativeType->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Audio);
    ExpectStatus(ReaderStatusUnsupportedType);
}

TEST_F(SampleReader, AttributesOfTheModes) {
    m_device = com::MakeOwned<ScriptedDeviceManager>();
    for (const auto format : {Device, Memory, Nv12}) {
        m_opening.requests.clear();
        EXPECT_EQ(Open(format)->outputFormat(), format);
        const auto& request = m_opening.requests.front();
        EXPECT_EQ(request.processesVideo, format != Nv12);
        EXPECT_EQ(request.usesHardware, format == Device);
        EXPECT_EQ(request.hasDevice, format == Device);
    }
    EXPECT_EQ(m_script->subtypeSet, MFVideoFormat_NV12);
}

TEST_F(SampleReader, TheDeviceTakesADeviceManager) {
    const auto reader = Open(Device);
    EXPECT_EQ(reader->outputFormat(), Memory);
    EXPECT_FALSE(reader->IsDXGI());
}

TEST_F(SampleReader, TheDeviceTakesANewerSystem) {
    m_device = com::MakeOwned<ScriptedDeviceManager>();
    win32::SetSystemVersion({6, 1, 1});
    EXPECT_EQ(Open(Device)->outputFormat(), Memory);
    win32::SetSystemVersion({6, 2, 0});
    EXPECT_EQ(Open(Device)->outputFormat(), Device);
}

TEST_F(SampleReader, TwoReadersHaveTheDevice) {
    EXPECT_EQ(WinH264SampleReader::ActiveHardwareDecodersLimit(), 2);
    m_device = com::MakeOwned<ScriptedDeviceManager>();
    std::vector<std::unique_ptr<WinH264SampleReader>> readers;
    for (int i = 0; i < 4; ++i) {
        readers.push_back(Open(Device));
        EXPECT_EQ(readers.back()->IsDXGI(), i < 2) << i;
        EXPECT_EQ(readers.back()->outputFormat(), i < 2 ? Device : Memory) << i;
    }
    readers.erase(readers.begin() + 2); // one without the device makes no room
    EXPECT_FALSE(Open(Device)->IsDXGI());
    readers.erase(readers.begin());
    readers.push_back(Open(Device));
    EXPECT_TRUE(readers.back()->IsDXGI());
    EXPECT_FALSE(Open(Device)->IsDXGI());
    readers.clear();
    EXPECT_TRUE(Open(Device)->IsDXGI());
    EXPECT_EQ(References(m_device.Get()), 1U);
}

TEST_F(SampleReader, TurnedPicturesAreConverted) {
    m_device = com::MakeOwned<ScriptedDeviceManager>();
    const std::vector<std::pair<boxes::Elements, int>> turns{
        {boxes::Clockwise90, 90}, {boxes::Clockwise180, 180}, {boxes::Clockwise270, 270}};
    for (const auto& [matrix, degrees] : turns) {
        for (const auto format : {Device, Memory, Nv12}) {
            const auto reader = OpenWithHeaders(Headers(64, 48, matrix), format);
            EXPECT_EQ(reader->outputFormat(), Nv12);
            EXPECT_EQ(reader->nativeMediaTypeInfo().rotation, degrees);
            EXPECT_EQ(m_script->subtypeSet, MFVideoFormat_NV12);
        }
    }
}

TEST_F(SampleReader, OtherTransformsChangeNothing) {
    constexpr std::int32_t one = boxes::One;
    const boxes::Elements mirrored{-one, 0, 0, 0, one, 0, 0, 0, boxes::LastOne};
    const boxes::Elements sheared{one, one / 2, 0, 0, one, 0, 0, 0, boxes::LastOne};
    for (const auto& matrix : {mirrored, sheared}) {
        const auto reader = OpenWithHeaders(Headers(64, 48, matrix));
        EXPECT_EQ(reader->outputFormat(), Memory);
        EXPECT_EQ(reader->nativeMediaTypeInfo().rotation, 0);
    }
}

class PixelAspect : public SampleReader {
protected:
    // Of a picture of w by h, pixels of p by q, shown as W by H. {0, 0} where opening throws.
    std::pair<std::uint32_t, std::uint32_t> Of(UINT32 w, UINT32 h, UINT32 p, UINT32 q,
                                               std::int32_t W, std::int32_t H) {
        MFSetAttributeSize(m_script->nativeType.Get(), MF_MT_FRAME_SIZE, w, h);
        MFSetAttributeRatio(m_script->nativeType.Get(), MF_MT_PIXEL_ASPECT_RATIO, p, q);
        try {
            const auto reader = OpenWithHeaders(Headers(W, H));
            const NativeMediaTypeInfo& info = reader->nativeMediaTypeInfo();
            return {info.pixelAspectRatioNumerator, info.pixelAspectRatioDenominator};
        } catch (const boost::bad_rational&) {
            return {0, 0};
        }
    }
};

using Ratio = std::pair<std::uint32_t, std::uint32_t>;

TEST_F(PixelAspect, IsThatOfTheDisplaySize) {
    EXPECT_EQ(Of(1440, 1080, 1, 1, 1920, 1080), Ratio(4, 3));
    EXPECT_EQ(Of(1440, 1080, 8, 6, 1920, 1080), Ratio(8, 6)); // it fits as it is
    EXPECT_EQ(Of(1440, 1080, 2, 1, 1920, 1080), Ratio(4, 3));
    EXPECT_EQ(Of(64, 48, 1, 1, 64, 48), Ratio(1, 1));
    EXPECT_EQ(Of(64, 48, 5, 4, 0, 0), Ratio(5, 4)); // no size to go by
}

TEST_F(PixelAspect, OfATypeWithoutOne) {
    MFSetAttributeSize(m_script->nativeType.Get(), MF_MT_FRAME_SIZE, 1440, 1080);
    const auto reader = OpenWithHeaders(Headers(1920, 1080));
    EXPECT_EQ(reader->nativeMediaTypeInfo().pixelAspectRatioNumerator, 4U);
    EXPECT_EQ(reader->nativeMediaTypeInfo().pixelAspectRatioDenominator, 3U);
}

TEST_F(PixelAspect, WhatIsNoRatioThrows) {
    EXPECT_EQ(Of(64, 48, 1, 1, 64, 0), Ratio(0, 0));         // a zero denominator
    EXPECT_EQ(Of(1, 0x80000, 1, 1, 0x1000, 1), Ratio(0, 0)); // 2147483648
    EXPECT_EQ(Of(1, 0x7FFFF, 1, 1, 0x1000, 1), Ratio(0x7FFFF000, 1));
    EXPECT_EQ(Of(0x80000, 1, 1, 1, 1, 0x1000), Ratio(0, 0));
}

// Numbers that 32 bits do not hold wrap, and the reader opens all the same.
TEST_F(PixelAspect, HugeNumbersWrap) {
    EXPECT_EQ(Of(1, 0x00100001, 1, 1, 0x1000, 1), Ratio(0x1000, 1));
    EXPECT_EQ(Of(0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0x7FFF, 0x7FFF),
              Ratio(0xFFFFFFFF, 0xFFFFFFFF));
}

TEST_F(SampleReader, ColourOfTheHeaders) {
    SetOptions options;
    options.vui = ColorVui(true, 7);
    const Blob blob = AnnexB(ParameterSet(options));
    m_script->nativeType->SetBlob(MF_MT_MPEG_SEQUENCE_HEADER, blob.data(),
                                  static_cast<UINT32>(blob.size()));
    const auto reader = Open();
    EXPECT_EQ(reader->colorConversionInfo().matrix, 3U);
    EXPECT_EQ(reader->colorConversionInfo().nominalRange, 1U);
    const auto sample = com::ComPtr<IMFSample>::Attach(reader->readSample(MediaTime(0), NoFlags));
    EXPECT_EQ(ColorConversionInfo(sample.Get()), reader->colorConversionInfo());
}

TEST_F(SampleReader, ColourByTheDisplayHeight) {
    for (const Blob& blob : {AnnexB(ParameterSet()), Blob{0, 0, 1, 0x20}, Blob{}}) {
        m_script->nativeType->SetBlob(MF_MT_MPEG_SEQUENCE_HEADER, blob.data(),
                                      static_cast<UINT32>(blob.size()));
        EXPECT_EQ(OpenWithHeaders(Headers(960, 720))->colorConversionInfo().matrix, 2U);
        EXPECT_EQ(OpenWithHeaders(Headers(960, 721))->colorConversionInfo().matrix, 1U);
        EXPECT_EQ(Open()->colorConversionInfo().matrix, 2U); // no height at all
        EXPECT_EQ(Open()->colorConversionInfo().nominalRange, 0U);
    }
}

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

TEST_F(SampleReader, TheDurationOfAnMp4FileIsItsHeaders) {
    EXPECT_EQ(Open(Memory, MadeMedia("h264/plain.mp4"))->StreamDuration(), 40'000'000);
    EXPECT_EQ(m_opening.requests.size(), 1U);
}

TEST_F(SampleReader, ElementaryStreamsGoNoFurther) {
    m_script->nativeType->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_H264_ES);
    const auto reader = Open(Memory, "elementary.h264");
    delete reader->readVideoSample(MediaTime(0), {}, NoFlags);
    try {
        reader->readVideoSample(MediaTime(50, 1'000'000), {}, NoFlags);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "Couldn't find key frame times");
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
