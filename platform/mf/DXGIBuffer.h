// What a buffer answers whose picture lies on a graphics device. Stands for IMFDXGIBuffer of
// mfobjects.h.
#pragma once

#include "platform/com/Unknown.h"

inline constexpr IID IID_IMFDXGIBuffer = {
    0xE7174CFA, 0x1C9E, 0x48B1, {0x88, 0x66, 0x62, 0x62, 0x26, 0xBF, 0xC2, 0x58}};

// Thread-safety: safe from any thread.
struct IMFDXGIBuffer : IUnknown {
    // *object: the surface, as the interface that the device's surfaces have (IHardwareSurface of
    // HardwareDevice.h). It stays the picture's as long as somebody has a reference on it.
    virtual HRESULT GetResource(REFIID iid, void** object) = 0;

    // *subresource: which part of the resource it is; 0, as each picture has a surface of its own.
    virtual HRESULT GetSubresourceIndex(UINT* subresource) = 0;

protected:
    ~IMFDXGIBuffer() = default;
};
