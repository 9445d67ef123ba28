// Graphics devices that decode, as this system has them. It stands where a host of the platform
// has its Direct3D device: what IMFDXGIDeviceManager::ResetDevice takes.
//
//     com::ComPtr<IUnknown> device;
//     if (SUCCEEDED(CreateHardwareDevice(HARDWARE_DEVICE_VAAPI, device.Put())))
//         manager->ResetDevice(device.Get(), token);
#pragma once

#include "platform/com/Unknown.h"
#include "platform/win32/Export.h"

enum HARDWARE_DEVICE_TYPE : UINT32 { // NOLINT(readability-identifier-naming): settled
    HARDWARE_DEVICE_VAAPI = 1,
    HARDWARE_DEVICE_CUDA = 2,
};

inline constexpr IID IID_IHardwareDevice = {
    0x5B8F3E1A, 0x7C42, 0x4D0B, {0x9A, 0x64, 0x21, 0xD7, 0x0E, 0xB3, 0x58, 0xC6}};
inline constexpr IID IID_IHardwareSurface = {
    0x1E6A94D3, 0x03BF, 0x4C7D, {0xB5, 0x2E, 0x8D, 0x40, 0xF9, 0x16, 0x7A, 0x2B}};

// A device that pictures are decoded on.
//
// Thread-safety: safe from any thread.
struct IHardwareDevice : IUnknown {
    // The AVBufferRef of FFmpeg's device, the object's, valid as long as it; null for a device
    // that does not decode but takes over what was decoded in memory.
    virtual void* DecodingDevice() = 0;

    // Whether a picture belongs on this device. `frame`: an AVFrame, borrowed; `decodedHere`:
    // whether its pixels lie on a device as it is. S_OK makes its buffer answer IMFDXGIBuffer,
    // S_FALSE leaves it one in memory, and so does a failure.
    virtual HRESULT TakeOver(const void* frame, BOOL decodedHere) = 0;

protected:
    ~IHardwareDevice() = default;
};

// A picture's surface on a device.
//
// Thread-safety: safe from any thread.
struct IHardwareSurface : IUnknown {
    // *frame: the picture's AVFrame, the object's, valid as long as it. Its format and data mean
    // what they mean for FFmpeg: with AV_PIX_FMT_VAAPI data[3] is the VASurfaceID, with
    // AV_PIX_FMT_CUDA data[0] and on are device addresses.
    virtual HRESULT GetFrame(const void** frame) = 0;

protected:
    ~IHardwareSurface() = default;
};

// *device: the system's first device of the kind, an IHardwareDevice. E_INVALIDARG for an unknown
// kind, E_FAIL where there is none that works.
PLATFORM_API HRESULT CreateHardwareDevice(HARDWARE_DEVICE_TYPE type, IUnknown** device);
