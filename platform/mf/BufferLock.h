// A buffer's memory, for as long as this stands.
//
//     const BufferLock lock(*buffer);
//     if (lock.Result() == S_OK) ... lock.Bytes() ...
#pragma once

#include "platform/mf/MediaBuffer.h"

namespace mf {

// Thread-safety: none.
class BufferLock {
public:
    // `buffer` is borrowed and outlives this.
    explicit BufferLock(IMFMediaBuffer& buffer)
        : m_buffer(buffer)
        , m_result(buffer.Lock(&m_bytes, &m_maxLength, &m_currentLength)) {}

    BufferLock(const BufferLock&) = delete;
    BufferLock& operator=(const BufferLock&) = delete;

    ~BufferLock() {
        if (SUCCEEDED(m_result)) {
            m_buffer.Unlock();
        }
    }

    // What Lock answered; the others hold where it succeeded.
    HRESULT Result() const { return m_result; }

    BYTE* Bytes() const { return m_bytes; }

    DWORD MaxLength() const { return m_maxLength; }

    DWORD CurrentLength() const { return m_currentLength; }

private:
    IMFMediaBuffer& m_buffer;
    BYTE* m_bytes = nullptr;
    DWORD m_maxLength = 0;
    DWORD m_currentLength = 0;
    HRESULT m_result; // behind what making it sets
};

} // namespace mf
