// Streams of bytes. Stands for objidl.h, as far as it is about reading.
#pragma once

#include "platform/com/Unknown.h"

inline constexpr IID IID_ISequentialStream = {
    0x0C733A30, 0x2A1C, 0x11CE, {0xAD, 0xE5, 0x00, 0xAA, 0x00, 0x44, 0x77, 0x3D}};
inline constexpr IID IID_IStream = {0x0000000C, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

enum STGTY : DWORD {
    STGTY_STORAGE = 1,
    STGTY_STREAM = 2,
};

enum STREAM_SEEK : DWORD { // NOLINT(readability-identifier-naming): settled
    STREAM_SEEK_SET = 0,
    STREAM_SEEK_CUR = 1,
    STREAM_SEEK_END = 2,
};

enum STATFLAG : DWORD {
    STATFLAG_DEFAULT = 0,
    STATFLAG_NONAME = 1, // leave pwcsName null
};

// Facts about a stream or a storage. Those that this layer does not know are 0.
struct STATSTG {
    LPWSTR pwcsName; // owned by the caller, of CoTaskMemAlloc; may be null
    DWORD type;      // a STGTY
    ULARGE_INTEGER cbSize;
    FILETIME mtime;
    FILETIME ctime;
    FILETIME atime;
    DWORD grfMode;
    DWORD grfLocksSupported;
    CLSID clsid;
    DWORD grfStateBits;
    DWORD reserved;
};

struct ISequentialStream : public IUnknown {
    // Reads `byteCount` bytes from the position on, which moves by what was read. *bytesRead, where
    // that is not null, is less than byteCount only at the end, with S_FALSE, or on a failure.
    virtual HRESULT Read(void* buffer, ULONG byteCount, ULONG* bytesRead) = 0;

    virtual HRESULT Write(const void* buffer, ULONG byteCount, ULONG* bytesWritten) = 0;

protected:
    ~ISequentialStream() = default;
};

struct IStream : public ISequentialStream {
    // Moves the position by `distance` from `origin`, a STREAM_SEEK; the new one comes back in
    // *newPosition where that is not null. A position past the end is one like any other.
    virtual HRESULT Seek(LARGE_INTEGER distance, DWORD origin, ULARGE_INTEGER* newPosition) = 0;

    virtual HRESULT SetSize(ULARGE_INTEGER size) = 0;
    virtual HRESULT CopyTo(IStream* other, ULARGE_INTEGER byteCount, ULARGE_INTEGER* bytesRead,
                           ULARGE_INTEGER* bytesWritten) = 0;
    virtual HRESULT Commit(DWORD flags) = 0;
    virtual HRESULT Revert() = 0;
    virtual HRESULT LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER byteCount, DWORD type) = 0;
    virtual HRESULT UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER byteCount, DWORD type) = 0;

    // `flags` is a STATFLAG.
    virtual HRESULT Stat(STATSTG* facts, DWORD flags) = 0;

    // *copy: a stream on the same bytes with a position of its own.
    virtual HRESULT Clone(IStream** copy) = 0;

protected:
    ~IStream() = default;
};
