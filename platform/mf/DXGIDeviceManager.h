// A graphics device that several share. Stands for IMFDXGIDeviceManager of mfobjects.h and
// MFCreateDXGIDeviceManager of mfapi.h.
#pragma once

#include "platform/com/Unknown.h"
#include "platform/win32/Export.h"
#include "platform/win32/Handle.h"

inline constexpr IID IID_IMFDXGIDeviceManager = {
    0xEB533D5D, 0x2DB6, 0x40F8, {0x97, 0xA9, 0x49, 0x46, 0x92, 0x01, 0x4F, 0x07}};

// Thread-safety: safe from any thread.
struct IMFDXGIDeviceManager : IUnknown {
    // Ends what OpenDeviceHandle began.
    virtual HRESULT CloseDeviceHandle(HANDLE device) = 0;

    // *service: the service `iid` of the device's video side.
    virtual HRESULT GetVideoService(HANDLE device, REFIID iid, void** service) = 0;

    // *object: the device as `iid`, the caller's alone until UnlockDevice. `block`: wait until
    // nobody else has it.
    virtual HRESULT LockDevice(HANDLE device, REFIID iid, void** object, BOOL block) = 0;

    // *device: a handle on the present device; it fails once the device has been replaced.
    virtual HRESULT OpenDeviceHandle(HANDLE* device) = 0;

    // Sets or replaces the device; resetToken came with the manager.
    virtual HRESULT ResetDevice(IUnknown* device, UINT resetToken) = 0;

    // Whether the handle is still one on the present device.
    virtual HRESULT TestDevice(HANDLE device) = 0;

    // saveState plays no part.
    virtual HRESULT UnlockDevice(HANDLE device, BOOL saveState) = 0;

protected:
    ~IMFDXGIDeviceManager() = default;
};

// *manager: one without a device; *resetToken: what its ResetDevice asks for.
PLATFORM_API HRESULT MFCreateDXGIDeviceManager(UINT* resetToken, IMFDXGIDeviceManager** manager);
