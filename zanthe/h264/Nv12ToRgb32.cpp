#include "zanthe/h264/Nv12ToRgb32.h"

#include <algorithm>
#include <cstring>

#include "platform/com/ClassRegistry.h"
#include "platform/mf/MediaFormats.h"
#include "zanthe/h264/LockedBuffer.h"

namespace Zanthe {

namespace {

// `count` bytes from `offset` on, of `byteCount` that there are.
void FillWithin(unsigned char* bytes, std::uint32_t byteCount, std::uint64_t offset,
                std::uint64_t count, int value) {
    if (offset < byteCount) {
        std::memset(bytes + offset, value, std::min<std::uint64_t>(count, byteCount - offset));
    }
}

void CopyRatio(IMFMediaType* from, IMFMediaType* to, REFGUID key, UINT32 numerator,
               UINT32 denominator) {
    static_cast<void>(MFGetAttributeRatio(from, key, &numerator, &denominator));
    static_cast<void>(MFSetAttributeRatio(to, key, numerator, denominator));
}

// The RGB32 picture of the same rate and shape as what `input` describes.
com::ComPtr<IMFMediaType> OutputTypeFor(IMFMediaType* input, FrameSize size) {
    com::ComPtr<IMFMediaType> type;
    if (FAILED(MFCreateMediaType(type.Put()))) {
        return {};
    }
    type->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
    type->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_RGB32);
    MFSetAttributeSize(type.Get(), MF_MT_FRAME_SIZE, size.width, size.height);
    CopyRatio(input, type.Get(), MF_MT_FRAME_RATE, 0, 1);
    CopyRatio(input, type.Get(), MF_MT_PIXEL_ASPECT_RATIO, 1, 1);
    type->SetUINT32(MF_MT_INTERLACE_MODE,
                    MFGetAttributeUINT32(input, MF_MT_INTERLACE_MODE, MFVideoInterlace_Unknown));
    return type;
}

void ClearPaddingOf(IMFSample* sample, FrameSize native, FrameSize decoded) {
    const LockedBuffer buffer(sample);
    ClearPadding(buffer.Bytes(), buffer.ByteCount(), native, decoded);
}

void MakeSampleOpaque(IMFSample* sample, FrameSize size) {
    const LockedBuffer buffer(sample);
    MakeOpaque(buffer.Bytes(), buffer.ByteCount(), size);
}

// An RGB32 sample with one buffer; empty where there is no memory for it.
com::ComPtr<IMFSample> MakeOutputSample(DWORD byteCount, FrameSize size) {
    com::ComPtr<IMFSample> sample;
    com::ComPtr<IMFMediaBuffer> buffer;
    if (FAILED(MFCreateSample(sample.Put())) ||
        FAILED(sample->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_RGB32)) ||
        FAILED(MFSetAttributeSize(sample.Get(), MF_MT_FRAME_SIZE, size.width, size.height)) ||
        FAILED(MFCreateMemoryBuffer(byteCount, buffer.Put())) ||
        FAILED(sample->AddBuffer(buffer.Get()))) {
        return {};
    }
    return sample;
}

} // namespace

com::ComPtr<IMFSample> Nv12ToRgb32::Convert(IMFSample* sample, IMFSourceReader* reader,
                                            int streamIndex, FrameSize native, FrameSize decoded) {
    if (!m_converter) {
        CreateColorConverter(reader, streamIndex, decoded);
    }
    if (native != decoded) {
        ClearPaddingOf(sample, native, decoded);
    }
    MFT_OUTPUT_STREAM_INFO info{};
    if (!m_converter || FAILED(m_converter->ProcessInput(0, sample, 0)) ||
        FAILED(m_converter->GetOutputStreamInfo(0, &info))) {
        return {};
    }
    com::ComPtr<IMFSample> converted = MakeOutputSample(info.cbSize, decoded);
    MFT_OUTPUT_DATA_BUFFER output{0, converted.Get(), 0, nullptr};
    DWORD status = 0;
    if (!converted || FAILED(m_converter->ProcessOutput(0, 1, &output, &status))) {
        return {};
    }
    // Once more: the converter may have replaced the sample's attributes.
    MFSetAttributeSize(converted.Get(), MF_MT_FRAME_SIZE, decoded.width, decoded.height);
    MakeSampleOpaque(converted.Get(), decoded);
    return converted;
}

// A converter without its types stays, and refuses every sample.
void Nv12ToRgb32::CreateColorConverter(IMFSourceReader* reader, int streamIndex,
                                       FrameSize decoded) {
    com::ComPtr<IMFMediaType> input;
    if (FAILED(CoCreateInstance(CLSID_CColorConvertDMO, nullptr, CLSCTX_INPROC_SERVER,
                                IID_IMFTransform, m_converter.PutVoid())) ||
        FAILED(reader->GetCurrentMediaType(static_cast<DWORD>(streamIndex), input.Put()))) {
        return;
    }
    static_cast<void>(m_converter->SetInputType(0, input.Get(), 0));
    const com::ComPtr<IMFMediaType> output = OutputTypeFor(input.Get(), decoded);
    MFT_OUTPUT_STREAM_INFO info{};
    if (output && SUCCEEDED(m_converter->SetOutputType(0, output.Get(), 0)) &&
        SUCCEEDED(m_converter->GetOutputStreamInfo(0, &info))) {
        static_cast<void>(m_converter->ProcessMessage(MFT_MESSAGE_NOTIFY_BEGIN_STREAMING, 0));
    }
}

void ClearPadding(unsigned char* bytes, std::uint32_t byteCount, FrameSize native,
                  FrameSize decoded) {
    if (decoded.height <= native.height) {
        return;
    }
    const std::uint64_t nativeWidth = native.width;
    const std::uint64_t decodedWidth = decoded.width;
    const std::uint64_t rows = decoded.height - native.height;
    const std::uint64_t evenWidth = nativeWidth & ~std::uint64_t{1};
    FillWithin(bytes, byteCount, native.height * nativeWidth, rows * nativeWidth, 0);
    FillWithin(bytes, byteCount, decoded.height * decodedWidth + native.height / 2 * evenWidth,
               decodedWidth / 2 * rows, 0x80);
}

void MakeOpaque(unsigned char* bytes, std::uint32_t byteCount, FrameSize size) {
    const std::uint64_t pixels = std::uint64_t{size.width} * size.height;
    const std::uint64_t end = std::min(pixels, std::uint64_t{byteCount} / 4) * 4;
    for (std::uint64_t at = 3; at < end; at += 4) {
        bytes[at] = 255;
    }
}

} // namespace Zanthe
