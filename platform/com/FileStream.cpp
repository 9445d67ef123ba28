#include "platform/com/FileStream.h"

#include <memory>
#include <string>

#include "platform/com/ReadingStream.h"
#include "platform/com/StorageResult.h"
#include "platform/win32/OwnedHandle.h"

namespace {

// The handle, shared by the streams on one file: each read says where.
class OpenFile {
public:
    explicit OpenFile(LPCWSTR path)
        : m_file(win32::OpenToRead(path))
        , m_name(path) {
        LARGE_INTEGER size{};
        if (IsOpen() && SetFilePointerEx(m_file.get(), {}, &size, FILE_END) == TRUE) {
            m_size = static_cast<std::uint64_t>(size.QuadPart);
        }
    }

    bool IsOpen() const { return m_file != nullptr; }

    std::uint64_t Size() const { return m_size; }

    const std::wstring& Name() const { return m_name; }

    bool ReadAt(std::uint64_t position, void* buffer, DWORD byteCount) {
        LARGE_INTEGER place{};
        place.QuadPart = static_cast<LONGLONG>(position);
        DWORD done = 0;
        return SetFilePointerEx(m_file.get(), place, nullptr, FILE_BEGIN) == TRUE &&
               ReadFile(m_file.get(), buffer, byteCount, &done, nullptr) == TRUE &&
               done == byteCount;
    }

private:
    win32::OwnedHandle m_file;
    std::uint64_t m_size = 0;
    std::wstring m_name;
};

class FileStream final : public com::ReadingStream {
public:
    explicit FileStream(std::shared_ptr<OpenFile> file)
        : m_file(std::move(file)) {}

    HRESULT Clone(IStream** copy) override { return com::Make<FileStream>(copy, m_file); }

private:
    std::uint64_t Size() const override { return m_file->Size(); }

    bool ReadAt(std::uint64_t position, void* buffer, ULONG byteCount) override {
        return m_file->ReadAt(position, buffer, byteCount);
    }

    std::wstring Name() const override { return m_file->Name(); }

    std::shared_ptr<OpenFile> m_file;
};

} // namespace

HRESULT SHCreateStreamOnFileW(LPCWSTR path, DWORD mode, IStream** stream) {
    if (stream == nullptr || path == nullptr) {
        return E_POINTER;
    }
    *stream = nullptr;
    if (mode != STGM_READ) {
        return STG_E_INVALIDFUNCTION;
    }
    return com::Wall([&]() -> HRESULT {
        auto file = std::make_shared<OpenFile>(path);
        return file->IsOpen() ? com::Make<FileStream>(stream, std::move(file)) : STG_E_FILENOTFOUND;
    });
}
