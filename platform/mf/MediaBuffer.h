// A block of memory with what a sample holds. Stands for IMFMediaBuffer of mfobjects.h.
#pragma once

#include "platform/com/Unknown.h"

inline constexpr IID IID_IMFMediaBuffer = {
    0x045FA593, 0x8799, 0x42B8, {0xBC, 0x8D, 0x89, 0x68, 0xC6, 0x45, 0x35, 0x07}};

// Thread-safety: the calls are safe from any thread; the memory is the caller's own to guard.
struct IMFMediaBuffer : IUnknown {
    // *bytes: the memory, valid until the Unlock that ends this lock; *maxLength its size and
    // *currentLength how much of it is valid, each of which may be null. Locks add up. A picture's
    // pixels are made by its first lock, so that one can fail, with E_FAIL or E_OUTOFMEMORY; no
    // lock is held then.
    virtual HRESULT Lock(BYTE** bytes, DWORD* maxLength, DWORD* currentLength) = 0;

    // Ends one lock. E_UNEXPECTED, with nothing changed, where there is none.
    virtual HRESULT Unlock() = 0;

    virtual HRESULT GetCurrentLength(DWORD* currentLength) = 0;

    // E_INVALIDARG, with nothing changed, beyond the size.
    virtual HRESULT SetCurrentLength(DWORD currentLength) = 0;

    virtual HRESULT GetMaxLength(DWORD* maxLength) = 0;

protected:
    ~IMFMediaBuffer() = default;
};

// *buffer: one of `maxLength` bytes, all of them zero, with a current length of 0.
HRESULT MFCreateMemoryBuffer(DWORD maxLength, IMFMediaBuffer** buffer);
