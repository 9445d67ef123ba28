// The bytes of a sample of sound, locked as long as the object lives.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "platform/com/ComPtr.h"
#include "platform/mf/Sample.h"

namespace Zanthe {

// Thread-safety: none.
class SampleBytes {
public:
    // Of all that the sample holds. Where there is no lock to be had, there are no bytes.
    explicit SampleBytes(IMFSample& sample)
        : SampleBytes(Contiguous(sample)) {}

    // Of one buffer, which may be empty.
    explicit SampleBytes(com::ComPtr<IMFMediaBuffer> buffer)
        : m_buffer(std::move(buffer))
        , m_result(m_buffer ? m_buffer->Lock(&m_bytes, nullptr, &m_byteCount) : E_POINTER) {
        if (FAILED(m_result)) {
            m_byteCount = 0;
        }
    }

    SampleBytes(const SampleBytes&) = delete;
    SampleBytes& operator=(const SampleBytes&) = delete;

    ~SampleBytes() {
        if (SUCCEEDED(m_result)) {
            m_buffer->Unlock();
        }
    }

    // What locking answered.
    HRESULT Result() const { return m_result; }

    unsigned char* Bytes() const { return m_bytes; }

    std::uint32_t ByteCount() const { return m_byteCount; }

private:
    static com::ComPtr<IMFMediaBuffer> Contiguous(IMFSample& sample) {
        com::ComPtr<IMFMediaBuffer> buffer;
        return SUCCEEDED(sample.ConvertToContiguousBuffer(buffer.Put()))
                   ? buffer
                   : com::ComPtr<IMFMediaBuffer>();
    }

    com::ComPtr<IMFMediaBuffer> m_buffer;
    BYTE* m_bytes = nullptr;
    DWORD m_byteCount = 0; // valid ones
    HRESULT m_result;      // behind what making it sets
};

// How many bytes the sample holds; nothing where that cannot be told.
inline std::optional<std::uint32_t> ByteCountOf(IMFSample& sample) {
    com::ComPtr<IMFMediaBuffer> buffer;
    DWORD count = 0;
    if (FAILED(sample.ConvertToContiguousBuffer(buffer.Put())) || !buffer ||
        FAILED(buffer->GetCurrentLength(&count))) {
        return std::nullopt;
    }
    return count;
}

} // namespace Zanthe
