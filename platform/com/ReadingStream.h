// What streams that are only read have in common.
//
//     class FileStream final : public com::ReadingStream { ... Size, ReadAt, Clone ... };
#pragma once

#include <cstdint>
#include <string>

#include "platform/com/Object.h"
#include "platform/com/Stream.h"

namespace com {

// A stream over bytes of a fixed size. It keeps the position; what derives from it reads at one.
//
// Thread-safety: none; one stream serves one thread at a time.
class ReadingStream : public Object<IStream> {
public:
    // IStream. What would change the bytes is STG_E_ACCESSDENIED, regions are E_NOTIMPL.
    HRESULT Read(void* buffer, ULONG byteCount, ULONG* bytesRead) final;
    HRESULT Write(const void* buffer, ULONG byteCount, ULONG* bytesWritten) final;
    HRESULT Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* newPosition) final;
    HRESULT SetSize(ULARGE_INTEGER size) final;
    HRESULT CopyTo(IStream* other, ULARGE_INTEGER byteCount, ULARGE_INTEGER* bytesRead,
                   ULARGE_INTEGER* bytesWritten) final;
    HRESULT Commit(DWORD flags) final;
    HRESULT Revert() final;
    HRESULT LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER byteCount, DWORD type) final;
    HRESULT UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER byteCount, DWORD type) final;
    HRESULT Stat(STATSTG* facts, DWORD flags) final;

protected:
    // In bytes, the same each time.
    virtual std::uint64_t Size() const = 0;

    // Reads [position, position + byteCount), which lies within the size; false when the system
    // cannot.
    virtual bool ReadAt(std::uint64_t position, void* buffer, ULONG byteCount) = 0;

    // As Stat tells it; empty for none.
    virtual std::wstring Name() const = 0;

private:
    void* Find(REFIID iid) final;

    std::uint64_t m_position = 0; // at most 63 bits
};

// A copy for a caller, of CoTaskMemAlloc; null where there is no memory.
LPWSTR CopyForCaller(const std::wstring& text);

} // namespace com
