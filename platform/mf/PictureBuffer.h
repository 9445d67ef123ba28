// The buffer of a decoded picture.
#pragma once

#include "platform/av/Picture.h"
#include "platform/com/ComPtr.h"
#include "platform/mf/HardwareDevice.h"
#include "platform/mf/MediaBuffer.h"

namespace mf {

enum class PixelLayout {
    Bgra, // 4 bytes a pixel, alpha 255
    Nv12, // brightness rows, then colour difference rows; even width and height
};

struct PixelSize {
    int width = 0;
    int height = 0;

    bool operator==(const PixelSize&) const = default;
};

// The size of the memory that holds a picture of `size`.
PixelSize SizeIn(PixelLayout layout, PixelSize size);

// Bytes of that memory; 0 where no buffer can hold it, as its lengths have 32 bits.
DWORD BytesOf(PixelLayout layout, PixelSize inMemory);

// *buffer: one of the pixels of `picture`, in a memory of `inMemory`; a picture of another size is
// scaled. Nothing is converted before the first Lock, and only once. `device`, which may be null,
// is asked whether the picture belongs on it.
HRESULT CreatePictureBuffer(av::PicturePtr picture, PixelLayout layout, PixelSize inMemory,
                            IHardwareDevice* device, IMFMediaBuffer** buffer);

} // namespace mf
