// The memory of a sample's first buffer, locked as long as the object lives.
#pragma once

#include <cstdint>

#include "platform/com/ComPtr.h"
#include "platform/mf/Sample.h"

namespace Zanthe {

// Thread-safety: none.
class LockedBuffer {
public:
    // Where there is no buffer, or no lock to be had, there are no bytes.
    explicit LockedBuffer(IMFSample* sample) {
        if (FAILED(sample->GetBufferByIndex(0, m_buffer.Put())) || !m_buffer) {
            return;
        }
        if (FAILED(m_buffer->Lock(&m_bytes, nullptr, &m_byteCount))) {
            m_buffer.Reset();
            m_byteCount = 0;
        }
    }

    LockedBuffer(const LockedBuffer&) = delete;
    LockedBuffer& operator=(const LockedBuffer&) = delete;

    ~LockedBuffer() {
        if (m_buffer) {
            m_buffer->Unlock();
        }
    }

    unsigned char* Bytes() const { return m_bytes; }

    std::uint32_t ByteCount() const { return m_byteCount; }

private:
    com::ComPtr<IMFMediaBuffer> m_buffer;
    BYTE* m_bytes = nullptr;
    DWORD m_byteCount = 0; // valid ones
};

} // namespace Zanthe
