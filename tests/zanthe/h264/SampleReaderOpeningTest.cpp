// What becomes of a file when it is opened.
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <boost/rational.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/TestMedia.h"
#include "tests/zanthe/h264/HeadersAlone.h"
#include "tests/zanthe/h264/ParameterSets.h"
#include "tests/zanthe/h264/SampleReaderFixture.h"
#include "tests/zanthe/h264/ScriptedCollector.h"
#include "zanthe/h264/KeyframeCollectorFactory.h"

using testing::ElementsAre;

namespace Zanthe {
namespace {

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
    EXPECT_THAT(m_script->selections,
                ElementsAre(std::pair(MF_SOURCE_READER_ALL_STREAMS, false),
                            std::pair(MF_SOURCE_READER_FIRST_VIDEO_STREAM, true)));
}

TEST_F(SampleReader, TheStreamIsTheFirstVideoWhateverIsAskedFor) {
    for (const int stream : {-1, 0, 7}) {
        m_script->streamsRead.clear();
        const std::unique_ptr<WinH264SampleReader> reader(
            WinH264SampleReader::create("any.avi", stream, Memory, nullptr));
        EXPECT_EQ(reader->readerStatus(), ReaderStatusOk);
        EXPECT_THAT(m_script->streamsRead, ElementsAre(1U));
    }
}

TEST_F(SampleReader, WithoutASelectedStreamNothingIsRead) {
    m_script->videoIsSelected = false;
    ExpectStatus(ReaderStatusFirstReadFailed);
    EXPECT_THAT(m_script->streamsRead, ElementsAre(0xFFFFFFFF));
}

TEST_F(SampleReader, TheOutputIsDescribedInFull) {
    MFSetAttributeSize(m_script->nativeType.Get(), MF_MT_FRAME_SIZE, 1440, 1080);
    MFSetAttributeRatio(m_script->nativeType.Get(), MF_MT_FRAME_RATE, 24000, 1001);
    OpenWithHeaders(HeadersAlone(1920, 1080));
    EXPECT_EQ(m_script->streamTyped, MF_SOURCE_READER_FIRST_VIDEO_STREAM);
    IMFMediaType* type = m_script->typeSet.Get();
    GUID major{};
    EXPECT_EQ(type->GetGUID(MF_MT_MAJOR_TYPE, &major), S_OK);
    EXPECT_EQ(major, MFMediaType_Video);
    EXPECT_EQ(m_script->subtypeSet, MFVideoFormat_ARGB32);
    EXPECT_EQ(MFGetAttributeUINT32(type, MF_MT_INTERLACE_MODE, 0), 2U);
    EXPECT_EQ(MFGetAttributeUINT64(type, MF_MT_FRAME_SIZE, 0), Pack2UINT32AsUINT64(1440, 1080));
    EXPECT_EQ(MFGetAttributeUINT64(type, MF_MT_FRAME_RATE, 0), Pack2UINT32AsUINT64(24000, 1001));
    EXPECT_EQ(MFGetAttributeUINT64(type, MF_MT_PIXEL_ASPECT_RATIO, 0), Pack2UINT32AsUINT64(4, 3));
    EXPECT_EQ(MFGetAttributeUINT32(type, MF_MT_FIXED_SIZE_SAMPLES, 0), 1U);
}

TEST_F(SampleReader, TheKeyFramesAreCollectedFromTheFirstSampleOn) {
    m_script->pictures = Pictures(10, 100, 5000);
    const auto collection = MakeCollection({{0}, 1000});
    const auto before = SetKeyframeCollectorFactory(
        [&] { return std::make_unique<ScriptedCollector>(collection); });
    const std::string path = FreshPath();
    Open(Memory, path).reset();
    SetKeyframeCollectorFactory(before);
    EXPECT_EQ(collection->path, path);
    EXPECT_EQ(collection->firstSampleTime, 5000);
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

TEST_F(SampleReader, AReaderCountsOnceHoweverMuchItReads) {
    m_device = com::MakeOwned<ScriptedDeviceManager>();
    auto reader = Open(Device, MadeMedia("h264/plain.mp4"));
    EXPECT_EQ(References(m_device.Get()), 2U); // the test's and the reader's
    for (const std::int64_t units : {50, 250, 750, 350}) {
        com::ComPtr<IMFSample>::Attach(reader->readSample(MediaTime(units, 10'000'000), NoFlags))
            .Reset();
    }
    EXPECT_GE(m_script->reads, 4);
    reader.reset();
    const auto first = Open(Device);
    const auto second = Open(Device);
    EXPECT_TRUE(first->IsDXGI());
    EXPECT_TRUE(second->IsDXGI());
    EXPECT_FALSE(Open(Device)->IsDXGI());
}

TEST_F(SampleReader, TurnedPicturesAreConverted) {
    m_device = com::MakeOwned<ScriptedDeviceManager>();
    const std::vector<std::pair<boxes::Elements, int>> turns{
        {boxes::Clockwise90, 90}, {boxes::Clockwise180, 180}, {boxes::Clockwise270, 270}};
    for (const auto& [matrix, degrees] : turns) {
        for (const auto format : {Device, Memory, Nv12}) {
            const auto reader = OpenWithHeaders(HeadersAlone(64, 48, matrix), format);
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
        const auto reader = OpenWithHeaders(HeadersAlone(64, 48, matrix));
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
            const auto reader = OpenWithHeaders(HeadersAlone(W, H));
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
    const auto reader = OpenWithHeaders(HeadersAlone(1920, 1080));
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

// One of the two is enough for the headers to have told.
TEST_F(SampleReader, ARangeAloneIsTheHeadersColour) {
    SetOptions options;
    options.vui = ColorVui(false, 2);
    const Blob blob = AnnexB(ParameterSet(options));
    m_script->nativeType->SetBlob(MF_MT_MPEG_SEQUENCE_HEADER, blob.data(),
                                  static_cast<UINT32>(blob.size()));
    const auto reader = Open();
    EXPECT_EQ(reader->colorConversionInfo().matrix, 0U);
    EXPECT_EQ(reader->colorConversionInfo().nominalRange, 2U);
}

TEST_F(SampleReader, ColourByTheDisplayHeight) {
    for (const Blob& blob : {AnnexB(ParameterSet()), Blob{0, 0, 1, 0x20}, Blob{}}) {
        m_script->nativeType->SetBlob(MF_MT_MPEG_SEQUENCE_HEADER, blob.data(),
                                      static_cast<UINT32>(blob.size()));
        EXPECT_EQ(OpenWithHeaders(HeadersAlone(960, 720))->colorConversionInfo().matrix, 2U);
        EXPECT_EQ(OpenWithHeaders(HeadersAlone(960, 721))->colorConversionInfo().matrix, 1U);
        EXPECT_EQ(Open()->colorConversionInfo().matrix, 2U); // no height at all
        EXPECT_EQ(Open()->colorConversionInfo().nominalRange, 0U);
    }
}

} // namespace
} // namespace Zanthe
