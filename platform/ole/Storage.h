// Compound files: storages within a file, like folders, and streams in them, like files. Stands for
// coml2api.h and the storage part of objidl.h, for reading only.
//
//     IStorage* storage = nullptr;
//     if (SUCCEEDED(StgOpenStorage(L"a.orirec", nullptr, STGM_SHARE_DENY_WRITE, nullptr, 0,
//                                  &storage)))
//         ... storage->OpenStream(L"Screen_Stream.avi", nullptr, STGM_SHARE_EXCLUSIVE, 0, &stream)
//
// Thread-safety: the functions are safe from any thread. A storage and all that was opened from it
// read one file at one position, so together they serve one thread at a time.
#pragma once

#include "platform/com/Stream.h"

inline constexpr IID IID_IEnumSTATSTG = {
    0x0000000D, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID IID_IStorage = {0x0000000B, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// How to open. What shares and transactions there are plays no part here: nothing is ever written.
inline constexpr DWORD STGM_WRITE = 0x00000001;
inline constexpr DWORD STGM_READWRITE = 0x00000002;
inline constexpr DWORD STGM_SHARE_EXCLUSIVE = 0x00000010;
inline constexpr DWORD STGM_SHARE_DENY_WRITE = 0x00000020;
inline constexpr DWORD STGM_TRANSACTED = 0x00010000;
inline constexpr DWORD STGM_NOSNAPSHOT = 0x00200000;

inline constexpr DWORD STGFMT_STORAGE = 0;
inline constexpr DWORD STGFMT_ANY = 4;

using SNB = LPWSTR*;

struct IEnumSTATSTG : public IUnknown {
    // Up to `count` further elements into `facts`, their names owned by the caller; how many comes
    // back in *fetched, which may be null where `count` is 1. S_FALSE where there were fewer.
    virtual HRESULT Next(ULONG count, STATSTG* facts, ULONG* fetched) = 0;

    virtual HRESULT Skip(ULONG count) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumSTATSTG** copy) = 0;

protected:
    ~IEnumSTATSTG() = default;
};

// What would change the file is STG_E_ACCESSDENIED.
struct IStorage : public IUnknown {
    virtual HRESULT CreateStream(LPCWSTR name, DWORD mode, DWORD reserved1, DWORD reserved2,
                                 IStream** stream) = 0;

    // *stream: the stream of this name, whatever the case of its letters, at its start, with a
    // reference for the caller; null on failure. STG_E_FILENOTFOUND where there is no such stream,
    // STG_E_ACCESSDENIED for a mode that writes.
    virtual HRESULT OpenStream(LPCWSTR name, void* reserved1, DWORD mode, DWORD reserved2,
                               IStream** stream) = 0;

    virtual HRESULT CreateStorage(LPCWSTR name, DWORD mode, DWORD reserved1, DWORD reserved2,
                                  IStorage** storage) = 0;

    // As OpenStream; `priority` and `exclude` are null.
    virtual HRESULT OpenStorage(LPCWSTR name, IStorage* priority, DWORD mode, SNB exclude,
                                DWORD reserved, IStorage** storage) = 0;

    virtual HRESULT CopyTo(DWORD excludedCount, const IID* excluded, SNB exclude,
                           IStorage* other) = 0;
    virtual HRESULT MoveElementTo(LPCWSTR name, IStorage* other, LPCWSTR newName, DWORD flags) = 0;
    virtual HRESULT Commit(DWORD flags) = 0;
    virtual HRESULT Revert() = 0;

    // *elements: what stands in this storage, in the order of the file.
    virtual HRESULT EnumElements(DWORD reserved1, void* reserved2, DWORD reserved3,
                                 IEnumSTATSTG** elements) = 0;

    virtual HRESULT DestroyElement(LPCWSTR name) = 0;
    virtual HRESULT RenameElement(LPCWSTR name, LPCWSTR newName) = 0;
    virtual HRESULT SetElementTimes(LPCWSTR name, const FILETIME* created, const FILETIME* read,
                                    const FILETIME* written) = 0;
    virtual HRESULT SetClass(REFCLSID classId) = 0;
    virtual HRESULT SetStateBits(DWORD bits, DWORD mask) = 0;

    // `flags` is a STATFLAG.
    virtual HRESULT Stat(STATSTG* facts, DWORD flags) = 0;

protected:
    ~IStorage() = default;
};

// S_OK where the regular file at `path` begins as a compound file does, S_FALSE where it does not,
// STG_E_FILENOTFOUND where CreateFileW finds no file.
HRESULT StgIsStorageFile(LPCWSTR path);

// *storage: the root of the compound file at `path`, with a reference for the caller; null on
// failure. STG_E_FILENOTFOUND where there is no file, STG_E_FILEALREADYEXISTS where there is one
// that is no compound file, STG_E_INVALIDHEADER for one that is damaged or has more than 2048
// elements, STG_E_ACCESSDENIED for a mode that writes. `priority` and `exclude` are null.
HRESULT StgOpenStorage(LPCWSTR path, IStorage* priority, DWORD mode, SNB exclude, DWORD reserved,
                       IStorage** storage);

// As StgOpenStorage. `format` is STGFMT_STORAGE or STGFMT_ANY and `iid` IID_IStorage; the rest is
// 0 or null.
HRESULT StgOpenStorageEx(LPCWSTR path, DWORD mode, DWORD format, DWORD attributes, void* options,
                         void* security, REFIID iid, void** storage);
