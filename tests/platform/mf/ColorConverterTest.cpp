#include <cstdlib>

#include <gtest/gtest.h>

#include "platform/com/ClassRegistry.h"
#include "platform/mf/BufferLock.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/Transform.h"
#include "tests/platform/mf/Readers.h"
#include "tests/support/TestMedia.h"

namespace {

com::ComPtr<IMFTransform> NewConverter() {
    com::ComPtr<IMFTransform> converter;
    EXPECT_EQ(CoCreateInstance(CLSID_CColorConvertDMO, nullptr, CLSCTX_INPROC_SERVER,
                               IID_IMFTransform, converter.PutVoid()),
              S_OK);
    return converter;
}

com::ComPtr<IMFMediaType> Type(REFGUID subtype, UINT32 width, UINT32 height) {
    auto type = VideoType(subtype);
    MFSetAttributeSize(type.Get(), MF_MT_FRAME_SIZE, width, height);
    return type;
}

com::ComPtr<IMFSample> SampleWith(DWORD bytes, BYTE value) {
    com::ComPtr<IMFSample> sample;
    com::ComPtr<IMFMediaBuffer> buffer;
    EXPECT_EQ(MFCreateSample(sample.Put()), S_OK);
    EXPECT_EQ(MFCreateMemoryBuffer(bytes, buffer.Put()), S_OK);
    {
        const mf::BufferLock lock(*buffer);
        std::fill_n(lock.Bytes(), bytes, value);
    }
    buffer->SetCurrentLength(bytes);
    sample->AddBuffer(buffer.Get());
    return sample;
}

HRESULT Output(IMFTransform& converter, IMFSample* sample) {
    MFT_OUTPUT_DATA_BUFFER buffer{0, sample, 1, nullptr};
    DWORD status = 1;
    return converter.ProcessOutput(0, 1, &buffer, &status);
}

ULONG CountOf(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

// A converter from NV12 to RGB32, each 4 x 2.
class ColorConverter : public testing::Test {
protected:
    ColorConverter() {
        EXPECT_EQ(m_converter->SetInputType(0, Type(MFVideoFormat_NV12, 4, 2).Get(), 0), S_OK);
        EXPECT_EQ(m_converter->SetOutputType(0, Type(MFVideoFormat_RGB32, 4, 2).Get(), 0), S_OK);
    }

    const com::ComPtr<IMFTransform> m_converter = NewConverter();
};

TEST_F(ColorConverter, TellsTheBufferItNeeds) {
    MFT_OUTPUT_STREAM_INFO info{};
    EXPECT_EQ(m_converter->GetOutputStreamInfo(0, &info), S_OK);
    EXPECT_EQ(info.cbSize, 32U);
    EXPECT_EQ(m_converter->GetOutputStreamInfo(1, &info), MF_E_INVALIDSTREAMNUMBER);
    EXPECT_EQ(m_converter->GetOutputStreamInfo(0, nullptr), E_POINTER);
}

TEST_F(ColorConverter, ConvertsOneSampleAtATime) {
    EXPECT_EQ(m_converter->ProcessMessage(MFT_MESSAGE_NOTIFY_BEGIN_STREAMING, 0), S_OK);
    const auto input = SampleWith(12, 128);
    input->SetSampleTime(5);
    input->SetSampleDuration(6);
    const auto output = SampleWith(32, 0);
    EXPECT_EQ(Output(*m_converter, output.Get()), MF_E_TRANSFORM_NEED_MORE_INPUT);
    EXPECT_EQ(m_converter->ProcessInput(0, input.Get(), 0), S_OK);
    EXPECT_EQ(m_converter->ProcessInput(0, input.Get(), 0), MF_E_NOTACCEPTING);
    EXPECT_EQ(CountOf(*input), 2U);
    EXPECT_EQ(Output(*m_converter, output.Get()), S_OK);
    EXPECT_EQ(CountOf(*input), 1U);
    EXPECT_EQ(TimeOf(*output), 5);
    EXPECT_EQ(DurationOf(*output), 6);
    const auto pixels = PixelsOf(*output);
    ASSERT_EQ(pixels.size(), 32U);
    EXPECT_NEAR(pixels[0], 130, 1); // (128 - 16) * 255 / 219
    EXPECT_EQ(pixels[0], pixels[2]);
    EXPECT_EQ(pixels[3], 255);
    EXPECT_EQ(Output(*m_converter, output.Get()), MF_E_TRANSFORM_NEED_MORE_INPUT);
}

TEST_F(ColorConverter, FlushDropsTheInput) {
    const auto input = SampleWith(12, 128);
    EXPECT_EQ(m_converter->ProcessInput(0, input.Get(), 0), S_OK);
    EXPECT_EQ(m_converter->ProcessMessage(MFT_MESSAGE_COMMAND_FLUSH, 0), S_OK);
    EXPECT_EQ(CountOf(*input), 1U);
    EXPECT_EQ(Output(*m_converter, SampleWith(32, 0).Get()), MF_E_TRANSFORM_NEED_MORE_INPUT);
}

TEST_F(ColorConverter, RefusesBuffersThatAreTooSmall) {
    const auto output = SampleWith(31, 0);
    EXPECT_EQ(m_converter->ProcessInput(0, SampleWith(12, 0).Get(), 0), S_OK);
    EXPECT_EQ(Output(*m_converter, output.Get()), MF_E_BUFFERTOOSMALL);
    EXPECT_EQ(m_converter->ProcessInput(0, SampleWith(11, 0).Get(), 0), S_OK);
    EXPECT_EQ(Output(*m_converter, SampleWith(32, 0).Get()), MF_E_BUFFERTOOSMALL);
    com::ComPtr<IMFSample> empty;
    ASSERT_EQ(MFCreateSample(empty.Put()), S_OK);
    EXPECT_EQ(m_converter->ProcessInput(0, empty.Get(), 0), S_OK);
    EXPECT_EQ(Output(*m_converter, SampleWith(32, 0).Get()), E_UNEXPECTED);
    EXPECT_EQ(m_converter->ProcessInput(0, SampleWith(12, 0).Get(), 0), S_OK);
    EXPECT_EQ(Output(*m_converter, empty.Get()), E_INVALIDARG);
    EXPECT_EQ(Output(*m_converter, nullptr), E_INVALIDARG);
    EXPECT_EQ(m_converter->ProcessOutput(0, 1, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_converter->ProcessInput(0, nullptr, 0), E_POINTER);
    EXPECT_EQ(m_converter->ProcessInput(1, empty.Get(), 0), MF_E_INVALIDSTREAMNUMBER);
}

TEST(ColorConverterTypes, BothHaveToBeSetAndAgree) {
    const auto converter = NewConverter();
    MFT_OUTPUT_STREAM_INFO info{};
    EXPECT_EQ(converter->GetOutputStreamInfo(0, &info), MF_E_TRANSFORM_TYPE_NOT_SET);
    EXPECT_EQ(converter->ProcessInput(0, SampleWith(12, 0).Get(), 0), MF_E_TRANSFORM_TYPE_NOT_SET);
    EXPECT_EQ(Output(*converter, SampleWith(32, 0).Get()), MF_E_TRANSFORM_TYPE_NOT_SET);
    const auto set = [&](const GUID& subtype, UINT32 width, UINT32 height, DWORD flags = 0) {
        return converter->SetInputType(0, Type(subtype, width, height).Get(), flags);
    };
    EXPECT_EQ(set(MFVideoFormat_RGB32, 4, 2), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(MFVideoFormat_NV12, 3, 2), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(MFVideoFormat_NV12, 0, 0), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(MFVideoFormat_NV12, 1U << 20, 1U << 20), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(converter->SetInputType(0, VideoType(MFVideoFormat_NV12).Get(), 0),
              MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(MFVideoFormat_NV12, 4, 2, MFT_SET_TYPE_TEST_ONLY), S_OK);
    EXPECT_EQ(converter->SetOutputType(0, Type(MFVideoFormat_RGB32, 4, 2).Get(), 0), S_OK);
    EXPECT_EQ(converter->GetOutputStreamInfo(0, &info), MF_E_TRANSFORM_TYPE_NOT_SET);
    EXPECT_EQ(set(MFVideoFormat_NV12, 8, 2), MF_E_INVALIDMEDIATYPE);
    EXPECT_EQ(set(MFVideoFormat_NV12, 4, 2), S_OK);
    EXPECT_EQ(converter->GetOutputStreamInfo(0, &info), S_OK);
    EXPECT_EQ(converter->SetInputType(0, nullptr, 0), S_OK);
    EXPECT_EQ(converter->GetOutputStreamInfo(0, &info), MF_E_TRANSFORM_TYPE_NOT_SET);
    EXPECT_EQ(converter->SetInputType(1, nullptr, 0), MF_E_INVALIDSTREAMNUMBER);
}

// What a reader of NV12 samples gets is what a reader of pixels gets.
class ConvertedPixels : public testing::TestWithParam<const char*> {};

TEST_P(ConvertedPixels, EqualThoseOfTheSourceReader) {
    const auto direct = OpenPixels(MadeMedia(GetParam()), MFVideoFormat_ARGB32);
    const auto indirect = OpenPixels(MadeMedia(GetParam()), MFVideoFormat_NV12);
    const ReadResult expected = ReadNext(*direct);
    const ReadResult planes = ReadNext(*indirect);
    ASSERT_TRUE(expected.sample && planes.sample);
    com::ComPtr<IMFMediaType> type;
    ASSERT_EQ(indirect->GetCurrentMediaType(kVideo, type.Put()), S_OK);
    const FrameSize size = SizeOf(*type);
    const auto converter = NewConverter();
    ASSERT_EQ(converter->SetInputType(0, type.Get(), 0), S_OK);
    ASSERT_EQ(
        converter->SetOutputType(0, Type(MFVideoFormat_RGB32, size.width, size.height).Get(), 0),
        S_OK);
    ASSERT_EQ(converter->ProcessInput(0, planes.sample.Get(), 0), S_OK);
    const auto output = SampleWith(4 * size.width * size.height, 0);
    ASSERT_EQ(Output(*converter, output.Get()), S_OK);
    const auto wanted = PixelsOf(*expected.sample);
    const auto got = PixelsOf(*output);
    ASSERT_EQ(got.size(), wanted.size());
    int furthest = 0;
    for (std::size_t i = 0; i < got.size(); ++i) {
        furthest = std::max(furthest, std::abs(got[i] - wanted[i]));
    }
    EXPECT_LE(furthest, 1);
}

INSTANTIATE_TEST_SUITE_P(Files, ConvertedPixels,
                         testing::Values("h264/plain.mp4", "h264/bt709.mp4", "h264/smpte240m.mp4",
                                         "h264/full-range.mp4", "h264/full-range-only.mp4",
                                         "h264/hd.mp4"));

} // namespace
