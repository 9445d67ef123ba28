#include "platform/mf/AsyncReader.h"

#include <algorithm>

#include "platform/com/Object.h"
#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/ReaderThread.h"

namespace mf {

namespace {

// What only tells or sets is handed on as it is; what moves the streams is refused while the thread
// reads them.
class AsyncReader final : public com::Object<IMFSourceReader> {
public:
    AsyncReader(IMFSourceReader* inner, IMFSourceReaderCallback* callback)
        : m_inner(inner)
        , m_thread(inner, callback) {
        FindFirstStreams();
    }

    HRESULT GetStreamSelection(DWORD streamIndex, BOOL* selected) override {
        return m_inner->GetStreamSelection(streamIndex, selected);
    }

    HRESULT SetStreamSelection(DWORD streamIndex, BOOL selected) override {
        return m_inner->SetStreamSelection(streamIndex, selected);
    }

    HRESULT GetNativeMediaType(DWORD streamIndex, DWORD typeIndex, IMFMediaType** type) override {
        return m_inner->GetNativeMediaType(streamIndex, typeIndex, type);
    }

    HRESULT GetCurrentMediaType(DWORD streamIndex, IMFMediaType** type) override {
        return m_inner->GetCurrentMediaType(streamIndex, type);
    }

    HRESULT SetCurrentMediaType(DWORD streamIndex, DWORD* reserved, IMFMediaType* type) override {
        return m_thread.WhileIdle(
            [&] { return m_inner->SetCurrentMediaType(streamIndex, reserved, type); });
    }

    HRESULT SetCurrentPosition(REFGUID timeFormat, REFPROPVARIANT position) override {
        return m_thread.WhileIdle(
            [&] { return m_inner->SetCurrentPosition(timeFormat, position); });
    }

    HRESULT ReadSample(DWORD streamIndex, DWORD /*controlFlags*/, DWORD* actualIndex, DWORD* flags,
                       LONGLONG* time, IMFSample** sample) override {
        if (actualIndex != nullptr || flags != nullptr || time != nullptr || sample != nullptr) {
            return E_INVALIDARG;
        }
        BOOL selected = FALSE;
        const HRESULT result = m_inner->GetStreamSelection(streamIndex, &selected);
        if (FAILED(result)) {
            return result;
        }
        return selected == FALSE ? MF_E_INVALIDREQUEST : m_thread.Read(NumberOf(streamIndex));
    }

    HRESULT Flush(DWORD streamIndex) override {
        const HRESULT result = m_inner->Flush(streamIndex);
        return FAILED(result) ? result : m_thread.Flush(NumberOf(streamIndex));
    }

    HRESULT GetServiceForStream(DWORD streamIndex, REFGUID service, REFIID iid,
                                void** object) override {
        return m_inner->GetServiceForStream(streamIndex, service, iid, object);
    }

    HRESULT GetPresentationAttribute(DWORD streamIndex, REFGUID attribute,
                                     PROPVARIANT* value) override {
        return m_inner->GetPresentationAttribute(streamIndex, attribute, value);
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSourceReader, static_cast<IMFSourceReader*>(this));
    }

    void FindFirstStreams() {
        com::ComPtr<IMFMediaType> type;
        for (DWORD i = 0; SUCCEEDED(m_inner->GetNativeMediaType(i, 0, type.Put())); ++i) {
            GUID major{};
            type->GetMajorType(&major);
            DWORD& first = major == MFMediaType_Video ? m_firstVideo : m_firstAudio;
            first = std::min(first, i);
            type.Reset();
        }
    }

    DWORD NumberOf(DWORD streamIndex) const {
        switch (streamIndex) {
        case MF_SOURCE_READER_FIRST_VIDEO_STREAM:
            return m_firstVideo;
        case MF_SOURCE_READER_FIRST_AUDIO_STREAM:
            return m_firstAudio;
        default:
            return streamIndex;
        }
    }

    const com::ComPtr<IMFSourceReader> m_inner;
    DWORD m_firstVideo = MF_SOURCE_READER_FIRST_VIDEO_STREAM; // itself where there is none
    DWORD m_firstAudio = MF_SOURCE_READER_FIRST_AUDIO_STREAM;
    ReaderThread m_thread; // ends before what it reads
};

} // namespace

HRESULT CreateAsyncReader(IMFSourceReader* inner, IMFSourceReaderCallback* callback,
                          IMFSourceReader** reader) {
    return com::Make<AsyncReader>(reader, inner, callback);
}

} // namespace mf
