#include "platform/mf/SourceSeekInfo.h"

#include <memory>
#include <mutex>
#include <optional>

#include "platform/av/CompressedStream.h"
#include "platform/com/Object.h"
#include "platform/mf/Errors.h"

namespace mf {

namespace {

void Tell(PROPVARIANT& variant, std::optional<LONGLONG> time) {
    PropVariantInit(&variant);
    if (time) {
        variant.vt = VT_I8;
        variant.hVal.QuadPart = *time;
    }
}

class SourceSeekInfo final : public com::Object<IMFSeekInfo> {
public:
    explicit SourceSeekInfo(std::unique_ptr<av::CompressedStream> stream)
        : m_stream(std::move(stream)) {}

    HRESULT GetNearestKeyFrames(const GUID* timeFormat, const PROPVARIANT* start,
                                PROPVARIANT* previous, PROPVARIANT* next) override {
        if (start == nullptr || previous == nullptr || next == nullptr) {
            return E_POINTER;
        }
        if (timeFormat != nullptr && *timeFormat != GUID_NULL) {
            return MF_E_UNSUPPORTED_TIME_FORMAT;
        }
        LONGLONG time = 0;
        if (FAILED(PropVariantToInt64(*start, &time))) {
            return E_INVALIDARG;
        }
        return com::Wall([&] {
            const std::lock_guard lock(m_mutex);
            const av::KeyFrames found = m_stream->KeyFramesAround(time);
            Tell(*previous, found.atOrBefore);
            Tell(*next, found.atOrAfter);
            return S_OK;
        });
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSeekInfo, static_cast<IMFSeekInfo*>(this));
    }

    std::mutex m_mutex;
    const std::unique_ptr<av::CompressedStream> m_stream; // used under m_mutex
};

} // namespace

HRESULT CreateSeekInfo(const std::string& path, int ordinal, REFIID iid, void** object) {
    auto stream = av::CompressedStream::Open(path, ordinal);
    if (stream == nullptr) {
        return MF_E_UNSUPPORTED_SERVICE;
    }
    return com::MakeOwned<SourceSeekInfo>(std::move(stream))->QueryInterface(iid, object);
}

} // namespace mf
