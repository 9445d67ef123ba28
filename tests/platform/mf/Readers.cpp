#include "tests/platform/mf/Readers.h"

#include <gtest/gtest.h>

#include "platform/mf/BufferLock.h"
#include "platform/mf/MediaFormats.h"
#include "platform/win32/Text.h"

com::ComPtr<IMFAttributes> ProcessingAttributes() {
    com::ComPtr<IMFAttributes> attributes;
    EXPECT_EQ(MFCreateAttributes(attributes.Put(), 3), S_OK);
    attributes->SetUINT32(MF_SOURCE_READER_ENABLE_ADVANCED_VIDEO_PROCESSING, 1);
    return attributes;
}

com::ComPtr<IMFSourceReader> OpenReader(const std::string& path,
                                        const com::ComPtr<IMFAttributes>& attributes) {
    com::ComPtr<IMFSourceReader> reader;
    EXPECT_EQ(MFCreateSourceReaderFromURL(win32::Utf8ToWide(path).c_str(), attributes.Get(),
                                          reader.Put()),
              S_OK)
        << path;
    return reader;
}

com::ComPtr<IMFSourceReader> OpenPixels(const std::string& path, REFGUID subtype) {
    auto reader = OpenReader(path, ProcessingAttributes());
    EXPECT_EQ(reader->SetCurrentMediaType(kVideo, nullptr, VideoType(subtype).Get()), S_OK);
    EXPECT_EQ(reader->SetStreamSelection(MF_SOURCE_READER_ALL_STREAMS, FALSE), S_OK);
    EXPECT_EQ(reader->SetStreamSelection(kVideo, TRUE), S_OK);
    return reader;
}

com::ComPtr<IMFMediaType> VideoType(REFGUID subtype) {
    com::ComPtr<IMFMediaType> type;
    EXPECT_EQ(MFCreateMediaType(type.Put()), S_OK);
    type->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
    type->SetGUID(MF_MT_SUBTYPE, subtype);
    return type;
}

ReadResult ReadNext(IMFSourceReader& reader, DWORD stream) {
    ReadResult read;
    read.result =
        reader.ReadSample(stream, 0, &read.index, &read.flags, &read.time, read.sample.Put());
    return read;
}

HRESULT Seek(IMFSourceReader& reader, LONGLONG position) {
    PROPVARIANT variant;
    PropVariantInit(&variant);
    variant.vt = VT_I8;
    variant.hVal.QuadPart = position;
    return reader.SetCurrentPosition(GUID_NULL, variant);
}

LONGLONG TimeOf(IMFSample& sample) {
    LONGLONG time = -1;
    EXPECT_EQ(sample.GetSampleTime(&time), S_OK);
    return time;
}

LONGLONG DurationOf(IMFSample& sample) {
    LONGLONG duration = -1;
    EXPECT_EQ(sample.GetSampleDuration(&duration), S_OK);
    return duration;
}

std::vector<std::uint8_t> PixelsOf(IMFSample& sample) {
    com::ComPtr<IMFMediaBuffer> buffer;
    EXPECT_EQ(sample.GetBufferByIndex(0, buffer.Put()), S_OK);
    const mf::BufferLock lock(*buffer);
    EXPECT_EQ(lock.Result(), S_OK);
    return FAILED(lock.Result())
               ? std::vector<std::uint8_t>()
               : std::vector<std::uint8_t>(lock.Bytes(), lock.Bytes() + lock.CurrentLength());
}

std::vector<com::ComPtr<IMFSample>> ReadAll(IMFSourceReader& reader) {
    std::vector<com::ComPtr<IMFSample>> samples;
    for (ReadResult read = ReadNext(reader); read.sample; read = ReadNext(reader)) {
        samples.push_back(read.sample);
    }
    return samples;
}

GUID SubtypeOf(IMFMediaType& type) {
    GUID subtype{};
    EXPECT_EQ(type.GetGUID(MF_MT_SUBTYPE, &subtype), S_OK);
    return subtype;
}

FrameSize SizeOf(IMFMediaType& type) {
    FrameSize size;
    EXPECT_EQ(MFGetAttributeSize(&type, MF_MT_FRAME_SIZE, &size.width, &size.height), S_OK);
    return size;
}

FrameSize CurrentSize(IMFSourceReader& reader) {
    com::ComPtr<IMFMediaType> type;
    EXPECT_EQ(reader.GetCurrentMediaType(kVideo, type.Put()), S_OK);
    return SizeOf(*type);
}
