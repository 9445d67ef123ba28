// The first audio stream of a file or source, read by an asynchronous source reader whose every
// answer is waited for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/com/ComPtr.h"
#include "platform/mf/SourceReader.h"
#include "zanthe/audio/mf/MediaFoundationSourceReaderCallback.h"

namespace Zanthe {

// Not open until one of the first two has succeeded; the others are for one that is, but for Read
// and Seek, which fail with E_UNEXPECTED before.
//
// Thread-safety: none; at most one request is in flight, and the caller waits for it. A source that
// never answers is waited for without end.
class AsyncAudioSource {
public:
    HRESULT Open(const std::wstring& path);
    HRESULT Open(IMFMediaSource& source);

    bool IsOpen() const { return static_cast<bool>(m_reader); }

    // All streams off, the first audio stream on; what turning the others off answers plays no
    // part.
    HRESULT SelectAlone();

    HRESULT GetNativeType(IMFMediaType** type);
    HRESULT GetCurrentType(IMFMediaType** type);
    HRESULT SetCurrentType(IMFMediaType& type);

    // In units of 100 ns; nothing where it is not told.
    std::optional<std::int64_t> Duration();

    // The next sample.
    SourceAnswer Read();

    // Drops what is read ahead, waits until that is done and sets the position; answers what
    // setting it did.
    HRESULT Seek(std::int64_t time);

private:
    HRESULT MakeAttributes(com::ComPtr<IMFAttributes>& attributes);

    com::ComPtr<IMFSourceReader> m_reader;
    com::ComPtr<MediaFoundationSourceReaderCallback> m_callback;
};

} // namespace Zanthe
