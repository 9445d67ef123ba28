// Makes 32-bit pixels of the NV12 samples that a source reader gives.
#pragma once

#include <cstdint>

#include "platform/com/ComPtr.h"
#include "platform/mf/SourceReader.h"
#include "platform/mf/Transform.h"

namespace Zanthe {

// In pixels.
struct FrameSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;

    friend bool operator==(const FrameSize&, const FrameSize&) = default;
};

// Owns the system's colour converter, which is made on the first conversion and kept.
//
// Thread-safety: none.
class Nv12ToRgb32 {
public:
    // The opaque RGB32 picture of `sample`, with a reference for the caller; null where that fails,
    // also where there is no converter. `reader` and its stream are those that the sample came
    // from. `native` is the picture's size, `decoded` the size of the sample and of the result:
    // where they differ, what the decoder left undefined in the sample is overwritten first.
    com::ComPtr<IMFSample> Convert(IMFSample* sample, IMFSourceReader* reader, int streamIndex,
                                   FrameSize native, FrameSize decoded);

private:
    void CreateColorConverter(IMFSourceReader* reader, int streamIndex, FrameSize decoded);

    com::ComPtr<IMFTransform> m_converter;
};

// Overwrites the rows below the picture with black, as far as they lie within the buffer. With a
// picture of nw by nh in a sample of dw by dh, and d = dh - nh:
//   d * nw bytes from byte nh * nw on become 0,
//   dw / 2 * d bytes from byte dh * dw + nh / 2 * (nw rounded down to even) on become 0x80.
// The widths are mixed so on purpose.
void ClearPadding(unsigned char* bytes, std::uint32_t byteCount, FrameSize native,
                  FrameSize decoded);

// Sets the fourth byte of every pixel of the packed picture to 255, as far as there are bytes.
void MakeOpaque(unsigned char* bytes, std::uint32_t byteCount, FrameSize size);

} // namespace Zanthe
