// A buffer's lengths and its count of locks.
#pragma once

#include <mutex>

#include "platform/com/Object.h"
#include "platform/mf/MediaBuffer.h"

namespace mf {

// Thread-safety: safe from any thread.
template <typename... More>
class CountedBuffer : public com::Object<IMFMediaBuffer, More...> {
public:
    HRESULT Lock(BYTE** bytes, DWORD* maxLength, DWORD* currentLength) final {
        if (bytes == nullptr) {
            return E_POINTER;
        }
        *bytes = nullptr;
        return com::Wall([&] {
            const std::lock_guard lock(m_mutex);
            const HRESULT result = Prepare(bytes);
            if (FAILED(result)) {
                return result;
            }
            ++m_locks;
            static_cast<void>(Tell(maxLength, m_maxLength));
            static_cast<void>(Tell(currentLength, m_currentLength));
            return S_OK;
        });
    }

    HRESULT Unlock() final {
        const std::lock_guard lock(m_mutex);
        if (m_locks == 0) {
            return E_UNEXPECTED;
        }
        --m_locks;
        return S_OK;
    }

    HRESULT GetCurrentLength(DWORD* currentLength) final {
        const std::lock_guard lock(m_mutex);
        return Tell(currentLength, m_currentLength);
    }

    HRESULT SetCurrentLength(DWORD currentLength) final {
        const std::lock_guard lock(m_mutex);
        if (currentLength > m_maxLength) {
            return E_INVALIDARG;
        }
        m_currentLength = currentLength;
        return S_OK;
    }

    HRESULT GetMaxLength(DWORD* maxLength) final { return Tell(maxLength, m_maxLength); }

protected:
    CountedBuffer(DWORD maxLength, DWORD currentLength)
        : m_maxLength(maxLength)
        , m_currentLength(currentLength) {}

private:
    // *bytes: maxLength of them, valid as long as the object. Called with each lock, one at a time.
    virtual HRESULT Prepare(BYTE** bytes) = 0;

    static HRESULT Tell(DWORD* length, DWORD value) {
        if (length == nullptr) {
            return E_POINTER;
        }
        *length = value;
        return S_OK;
    }

    const DWORD m_maxLength;
    std::mutex m_mutex; // guards all below
    DWORD m_currentLength;
    ULONG m_locks = 0;
};

} // namespace mf
