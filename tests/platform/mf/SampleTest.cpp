#include "platform/mf/Sample.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/mf/BufferLock.h"
#include "platform/mf/DXGIBuffer.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"

namespace {

com::ComPtr<IMFSample> NewSample() {
    com::ComPtr<IMFSample> sample;
    EXPECT_EQ(MFCreateSample(sample.Put()), S_OK);
    return sample;
}

com::ComPtr<IMFMediaBuffer> BufferWith(const std::string& text) {
    com::ComPtr<IMFMediaBuffer> buffer;
    EXPECT_EQ(MFCreateMemoryBuffer(16, buffer.Put()), S_OK);
    const mf::BufferLock lock(*buffer);
    text.copy(reinterpret_cast<char*>(lock.Bytes()), text.size());
    EXPECT_EQ(buffer->SetCurrentLength(static_cast<DWORD>(text.size())), S_OK);
    return buffer;
}

std::string TextOf(IMFMediaBuffer& buffer) {
    const mf::BufferLock lock(buffer);
    return {reinterpret_cast<const char*>(lock.Bytes()), lock.CurrentLength()};
}

ULONG CountOf(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

TEST(Sample, HasNoTimesBeforeTheyAreSet) {
    const auto sample = NewSample();
    LONGLONG value = 5;
    EXPECT_EQ(sample->GetSampleTime(&value), MF_E_NO_SAMPLE_TIMESTAMP);
    EXPECT_EQ(sample->GetSampleDuration(&value), MF_E_NO_SAMPLE_DURATION);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(sample->SetSampleTime(-1), S_OK);
    EXPECT_EQ(sample->SetSampleDuration(2), S_OK);
    EXPECT_EQ(sample->GetSampleTime(&value), S_OK);
    EXPECT_EQ(value, -1);
    EXPECT_EQ(sample->GetSampleDuration(&value), S_OK);
    EXPECT_EQ(value, 2);
    EXPECT_EQ(sample->GetSampleTime(nullptr), E_POINTER);
}

TEST(Sample, KeepsReferencesOnItsBuffers) {
    const auto buffer = BufferWith("abc");
    {
        const auto sample = NewSample();
        EXPECT_EQ(sample->AddBuffer(buffer.Get()), S_OK);
        EXPECT_EQ(CountOf(*buffer), 2U);
        com::ComPtr<IMFMediaBuffer> read;
        EXPECT_EQ(sample->GetBufferByIndex(0, read.Put()), S_OK);
        EXPECT_EQ(read.Get(), buffer.Get());
        EXPECT_EQ(CountOf(*buffer), 3U);
        DWORD count = 0;
        EXPECT_EQ(sample->GetBufferCount(&count), S_OK);
        EXPECT_EQ(count, 1U);
    }
    EXPECT_EQ(CountOf(*buffer), 1U);
}

TEST(Sample, RefusesWhatItHasNot) {
    const auto sample = NewSample();
    IMFMediaBuffer* buffer = reinterpret_cast<IMFMediaBuffer*>(sample.Get());
    EXPECT_EQ(sample->GetBufferByIndex(0, &buffer), E_INVALIDARG);
    EXPECT_EQ(buffer, nullptr);
    EXPECT_EQ(sample->GetBufferByIndex(0, nullptr), E_POINTER);
    EXPECT_EQ(sample->ConvertToContiguousBuffer(&buffer), E_UNEXPECTED);
    EXPECT_EQ(sample->AddBuffer(nullptr), E_INVALIDARG);
    EXPECT_EQ(sample->GetBufferCount(nullptr), E_POINTER);
}

TEST(Sample, JoinsItsBuffers) {
    const auto sample = NewSample();
    const auto first = BufferWith("abc");
    sample->AddBuffer(first.Get());
    com::ComPtr<IMFMediaBuffer> joined;
    EXPECT_EQ(sample->ConvertToContiguousBuffer(joined.Put()), S_OK);
    EXPECT_EQ(joined.Get(), first.Get());
    sample->AddBuffer(BufferWith("").Get());
    sample->AddBuffer(BufferWith("defg").Get());
    EXPECT_EQ(sample->ConvertToContiguousBuffer(joined.Put()), S_OK);
    EXPECT_EQ(TextOf(*joined), "abcdefg");
    DWORD count = 0;
    sample->GetBufferCount(&count);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(CountOf(*first), 1U);
}

TEST(Sample, HasAttributes) {
    const auto sample = NewSample();
    sample->SetUINT32(MF_MT_YUV_MATRIX, 2);
    EXPECT_EQ(MFGetAttributeUINT32(sample.Get(), MF_MT_YUV_MATRIX, 0), 2U);
    EXPECT_TRUE(sample.As<IMFAttributes>(IID_IMFAttributes));
    EXPECT_FALSE(sample.As<IMFMediaBuffer>(IID_IMFMediaBuffer));
}

TEST(MemoryBuffer, CountsItsLocks) {
    com::ComPtr<IMFMediaBuffer> buffer;
    ASSERT_EQ(MFCreateMemoryBuffer(10, buffer.Put()), S_OK);
    EXPECT_EQ(buffer->Unlock(), E_UNEXPECTED);
    BYTE* first = nullptr;
    BYTE* second = nullptr;
    DWORD most = 0;
    DWORD current = 1;
    EXPECT_EQ(buffer->Lock(&first, &most, &current), S_OK);
    EXPECT_EQ(most, 10U);
    EXPECT_EQ(current, 0U);
    EXPECT_EQ(buffer->Lock(&second, nullptr, nullptr), S_OK);
    EXPECT_EQ(first, second);
    EXPECT_EQ(buffer->Unlock(), S_OK);
    EXPECT_EQ(buffer->Unlock(), S_OK);
    EXPECT_EQ(buffer->Unlock(), E_UNEXPECTED);
    EXPECT_EQ(buffer->Lock(nullptr, nullptr, nullptr), E_POINTER);
}

TEST(MemoryBuffer, KeepsItsLengthWithinItsSize) {
    com::ComPtr<IMFMediaBuffer> buffer;
    ASSERT_EQ(MFCreateMemoryBuffer(10, buffer.Put()), S_OK);
    EXPECT_EQ(buffer->SetCurrentLength(11), E_INVALIDARG);
    EXPECT_EQ(buffer->SetCurrentLength(10), S_OK);
    DWORD length = 0;
    EXPECT_EQ(buffer->GetCurrentLength(&length), S_OK);
    EXPECT_EQ(length, 10U);
    EXPECT_EQ(buffer->GetMaxLength(&length), S_OK);
    EXPECT_EQ(length, 10U);
    EXPECT_EQ(buffer->GetCurrentLength(nullptr), E_POINTER);
    EXPECT_FALSE(buffer.As<IMFDXGIBuffer>(IID_IMFDXGIBuffer));
}

} // namespace
