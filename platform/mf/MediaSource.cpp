#include "platform/mf/MediaSource.h"

#include <atomic>
#include <utility>

#include "platform/com/Object.h"
#include "platform/mf/SourceFile.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"

namespace mf {

namespace {

class FileMediaSource final : public com::Object<IMFMediaSource, ISourceFile> {
public:
    explicit FileMediaSource(std::string path)
        : m_path(std::move(path)) {}

    HRESULT Shutdown() override {
        m_shutDown = true;
        return S_OK;
    }

    const std::string& Path() const override { return m_path; }

    bool IsShutDown() const override { return m_shutDown; }

private:
    void* Find(REFIID iid) override {
        if (iid == IID_ISourceFile) {
            return static_cast<ISourceFile*>(this);
        }
        return com::Among(iid, IID_IMFMediaSource, static_cast<IMFMediaSource*>(this));
    }

    const std::string m_path;
    std::atomic<bool> m_shutDown = false;
};

class SourceResolver final : public com::Object<IMFSourceResolver> {
public:
    HRESULT CreateObjectFromURL(LPCWSTR url, DWORD flags, IPropertyStore* /*properties*/,
                                MF_OBJECT_TYPE* type, IUnknown** object) override {
        if (url == nullptr || type == nullptr || object == nullptr) {
            return E_POINTER;
        }
        *type = MF_OBJECT_INVALID;
        *object = nullptr;
        if (flags != MF_RESOLUTION_MEDIASOURCE) {
            return E_INVALIDARG;
        }
        return com::Wall([&] {
            std::string path = win32::ExistingPath(win32::WideToUtf8(url));
            av::FileFacts facts;
            if (const HRESULT result = ReadSourceFacts(path, facts); FAILED(result)) {
                return result;
            }
            const auto source = com::MakeOwned<FileMediaSource>(std::move(path));
            *type = MF_OBJECT_MEDIASOURCE;
            return source->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(object));
        });
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IMFSourceResolver, static_cast<IMFSourceResolver*>(this));
    }
};

} // namespace

} // namespace mf

HRESULT MFCreateSourceResolver(IMFSourceResolver** resolver) {
    return com::Make<mf::SourceResolver>(resolver);
}
