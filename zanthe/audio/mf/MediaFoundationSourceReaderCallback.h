// Turns the answers of an asynchronous source reader into something that can be waited for.
//
//     auto callback = com::ComPtr<MediaFoundationSourceReaderCallback>::Attach(
//         new MediaFoundationSourceReaderCallback);
//     attributes->SetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, callback.Get());
//     ... reader->ReadSample(stream, 0, nullptr, nullptr, nullptr, nullptr);
//     SourceAnswer answer = callback->WaitForSample();
#pragma once

#include <atomic>
#include <mutex>

#include "platform/com/ComPtr.h"
#include "platform/mf/SourceReaderCallback.h"
#include "platform/win32/OwnedHandle.h"

namespace Zanthe {

// What one read came to.
struct SourceAnswer {
    HRESULT result = S_OK;
    DWORD streamFlags = 0; // of MF_SOURCE_READERF_...
    DWORD streamIndex = 0;
    LONGLONG timestamp = 0; // 0 where there is no sample
    com::ComPtr<IMFSample> sample;
};

// One request is in flight at a time, and whoever made it waits for it.
//
// Thread-safety: the reader's threads answer, one other thread waits. The lock guards the latest
// answer; it is never held while waiting, nor while a sample is given back.
class MediaFoundationSourceReaderCallback final : public IMFSourceReaderCallback {
public:
    MediaFoundationSourceReaderCallback();
    MediaFoundationSourceReaderCallback(const MediaFoundationSourceReaderCallback&) = delete;
    MediaFoundationSourceReaderCallback&
    operator=(const MediaFoundationSourceReaderCallback&) = delete;

    // Of the last reference, which ends it.
    virtual ~MediaFoundationSourceReaderCallback() = default;

    // IUnknown; E_INVALIDARG where there is no place for the interface.
    HRESULT QueryInterface(REFIID iid, void** object) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // IMFSourceReaderCallback; all answer S_OK.
    HRESULT OnReadSample(HRESULT result, DWORD streamIndex, DWORD streamFlags, LONGLONG timestamp,
                         IMFSample* sample) override;
    HRESULT OnFlush(DWORD streamIndex) override;
    HRESULT OnEvent(DWORD streamIndex, IMFMediaEvent* event) override;

    // Wait, however long it takes, for the answer to a request that was accepted.
    SourceAnswer WaitForSample();
    void WaitForFlush();

private:
    std::atomic<ULONG> m_references{1};
    SourceAnswer m_answer; // guarded by m_mutex
    win32::OwnedHandle m_readEvent;
    win32::OwnedHandle m_flushEvent;
    std::mutex m_mutex;
};

} // namespace Zanthe
