#include "zanthe/audio/mf/MediaFoundationSourceReaderCallback.h"

#include <utility>

#include "platform/win32/Event.h"
#include "platform/win32/Wait.h"

namespace Zanthe {

namespace {

// Reset by the wait that it ends.
HANDLE MakeEvent() {
    return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

} // namespace

MediaFoundationSourceReaderCallback::MediaFoundationSourceReaderCallback()
    : m_readEvent(MakeEvent())
    , m_flushEvent(MakeEvent()) {}

HRESULT MediaFoundationSourceReaderCallback::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) {
        return E_INVALIDARG;
    }
    const bool known = iid == IID_IUnknown || iid == IID_IMFSourceReaderCallback;
    *object = known ? static_cast<IMFSourceReaderCallback*>(this) : nullptr;
    if (!known) {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG MediaFoundationSourceReaderCallback::AddRef() {
    return m_references.fetch_add(1, std::memory_order_relaxed) + 1;
}

ULONG MediaFoundationSourceReaderCallback::Release() {
    // Every thread's last use comes before the end.
    const ULONG left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) {
        delete this;
    }
    return left;
}

HRESULT MediaFoundationSourceReaderCallback::OnReadSample(HRESULT result, DWORD streamIndex,
                                                          DWORD streamFlags, LONGLONG timestamp,
                                                          IMFSample* sample) {
    SourceAnswer answer{result, streamFlags, streamIndex, 0, {}};
    if (SUCCEEDED(result) && sample != nullptr) {
        answer.timestamp = timestamp;
        answer.sample = com::ComPtr<IMFSample>(sample);
    }
    {
        const std::lock_guard lock(m_mutex);
        std::swap(m_answer, answer);
    }
    SetEvent(m_readEvent.get());
    return S_OK;
}

HRESULT MediaFoundationSourceReaderCallback::OnFlush(DWORD /*streamIndex*/) {
    SetEvent(m_flushEvent.get());
    return S_OK;
}

HRESULT MediaFoundationSourceReaderCallback::OnEvent(DWORD /*streamIndex*/,
                                                     IMFMediaEvent* /*event*/) {
    return S_OK;
}

SourceAnswer MediaFoundationSourceReaderCallback::WaitForSample() {
    WaitForSingleObject(m_readEvent.get(), INFINITE);
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_answer, {});
}

void MediaFoundationSourceReaderCallback::WaitForFlush() {
    WaitForSingleObject(m_flushEvent.get(), INFINITE);
}

} // namespace Zanthe
