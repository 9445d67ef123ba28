#include "platform/mf/Sample.h"

#include <algorithm>
#include <limits>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/mf/AttributeStore.h"
#include "platform/mf/BufferLock.h"

namespace mf {

namespace {

using Buffers = std::vector<com::ComPtr<IMFMediaBuffer>>;

// The valid bytes of all the buffers, one after the other.
HRESULT Join(const Buffers& buffers, com::ComPtr<IMFMediaBuffer>& joined) {
    UINT64 total = 0;
    for (const auto& buffer : buffers) {
        DWORD length = 0;
        if (const HRESULT result = buffer->GetCurrentLength(&length); FAILED(result)) {
            return result;
        }
        total += length;
    }
    if (total > std::numeric_limits<DWORD>::max()) {
        return E_OUTOFMEMORY;
    }
    const auto size = static_cast<DWORD>(total);
    if (const HRESULT result = MFCreateMemoryBuffer(size, joined.Put()); FAILED(result)) {
        return result;
    }
    const BufferLock out(*joined);
    DWORD filled = 0;
    for (const auto& buffer : buffers) {
        const BufferLock in(*buffer);
        if (FAILED(in.Result())) {
            return in.Result();
        }
        // A buffer of somebody's own may have grown since it was asked.
        const DWORD length = std::min(in.CurrentLength(), size - filled);
        std::copy_n(in.Bytes(), length, out.Bytes() + filled);
        filled += length;
    }
    return joined->SetCurrentLength(filled);
}

class SampleObject final : public WithAttributes<IMFSample> {
public:
    SampleObject()
        : WithAttributes(IID_IMFSample) {}

    HRESULT GetSampleTime(LONGLONG* time) override {
        return Get(m_time, MF_E_NO_SAMPLE_TIMESTAMP, time);
    }

    HRESULT SetSampleTime(LONGLONG time) override { return Set(m_time, time); }

    HRESULT GetSampleDuration(LONGLONG* duration) override {
        return Get(m_duration, MF_E_NO_SAMPLE_DURATION, duration);
    }

    HRESULT SetSampleDuration(LONGLONG duration) override { return Set(m_duration, duration); }

    HRESULT GetBufferCount(DWORD* count) override {
        if (count == nullptr) {
            return E_POINTER;
        }
        const std::lock_guard lock(m_mutex);
        *count = static_cast<DWORD>(m_buffers.size());
        return S_OK;
    }

    HRESULT GetBufferByIndex(DWORD index, IMFMediaBuffer** buffer) override {
        if (buffer == nullptr) {
            return E_POINTER;
        }
        *buffer = nullptr;
        const std::lock_guard lock(m_mutex);
        if (index >= m_buffers.size()) {
            return E_INVALIDARG;
        }
        m_buffers[index].CopyTo(buffer);
        return S_OK;
    }

    HRESULT ConvertToContiguousBuffer(IMFMediaBuffer** buffer) override {
        if (buffer == nullptr) {
            return E_POINTER;
        }
        *buffer = nullptr;
        return com::Wall([&] {
            const std::lock_guard lock(m_mutex);
            if (m_buffers.empty()) {
                return E_UNEXPECTED;
            }
            if (const HRESULT result = JoinBuffers(); FAILED(result)) {
                return result;
            }
            m_buffers.front().CopyTo(buffer);
            return S_OK;
        });
    }

    HRESULT AddBuffer(IMFMediaBuffer* buffer) override {
        if (buffer == nullptr) {
            return E_INVALIDARG;
        }
        return com::Wall([&] {
            const std::lock_guard lock(m_mutex);
            m_buffers.emplace_back(buffer);
            return S_OK;
        });
    }

private:
    HRESULT Get(const std::optional<LONGLONG>& held, HRESULT otherwise, LONGLONG* value) const {
        if (value == nullptr) {
            return E_POINTER;
        }
        const std::lock_guard lock(m_mutex);
        if (!held) {
            return otherwise;
        }
        *value = *held;
        return S_OK;
    }

    HRESULT Set(std::optional<LONGLONG>& held, LONGLONG value) {
        const std::lock_guard lock(m_mutex);
        held = value;
        return S_OK;
    }

    HRESULT JoinBuffers() {
        if (m_buffers.size() == 1) {
            return S_OK;
        }
        com::ComPtr<IMFMediaBuffer> joined;
        const HRESULT result = Join(m_buffers, joined);
        if (SUCCEEDED(result)) {
            m_buffers.assign(1, joined);
        }
        return result;
    }

    mutable std::mutex m_mutex; // guards all below
    std::optional<LONGLONG> m_time;
    std::optional<LONGLONG> m_duration;
    Buffers m_buffers;
};

} // namespace

} // namespace mf

HRESULT MFCreateSample(IMFSample** sample) {
    return com::Make<mf::SampleObject>(sample);
}
