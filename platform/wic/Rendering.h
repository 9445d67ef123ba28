// What a chain of sources comes down to: one order to the picture at its start.
//
// A rotator, a converter and a scaler decode nothing. Asked for pixels, each writes its wish into
// the order and hands it to its own source; the picture at the start of the chain carries the whole
// order out at once, and so may decode at a smaller size, and turns the rows as it writes them.
#pragma once

#include "platform/wic/Turn.h"
#include "platform/wic/WinCodec.h"

namespace wic {

// No still picture of more pixels is decoded: one of 16384 by 16384 just is.
inline constexpr std::uint64_t MaxPicturePixels = std::uint64_t{1} << 28;

// The same for what has to be held whole while it is decoded: progressive JPEG, interlaced PNG,
// WebP, HEIF.
inline constexpr std::uint64_t MaxProgressivePixels = std::uint64_t{1} << 27;

// No row is longer, in bytes as it is decoded: to scale, libvips holds hundreds of them. One of
// 131072 pixels of four values of 16 bits just is.
inline constexpr std::uint64_t MaxRowBytes = std::uint64_t{1} << 20;

// The same of rows that are only there together.
inline constexpr std::uint64_t MaxStripBytes = std::uint64_t{1} << 29;

// No surface and no frame of a GIF is larger: one of 7680 by 4320 just is, and takes 128 MiB.
inline constexpr std::uint64_t MaxSurfacePixels = std::uint64_t{1} << 25;

struct PictureShape {
    UINT width = 0;  // pixels
    UINT height = 0; // pixels
    WICPixelFormatGUID format = GUID_WICPixelFormat32bppPBGRA;
    double dpiX = 96.0;
    double dpiY = 96.0;
};

// From the picture to the rows: scale to `width` by `height`, convert to `format`, turn.
struct Rendering {
    UINT width;  // before the turn
    UINT height; // before the turn
    WICPixelFormatGUID format;
    Turn turn;
    std::size_t stride; // bytes from row to row
    BYTE* bits;         // the top row of what has been turned
};

// The size of the rows of `rendering`.
inline UINT RowWidth(const Rendering& rendering) {
    return rendering.turn.SwapsSides() ? rendering.height : rendering.width;
}

inline UINT RowCount(const Rendering& rendering) {
    return rendering.turn.SwapsSides() ? rendering.width : rendering.height;
}

// What every source of this layer can do beside its interface.
//
// Thread-safety: none.
class IPicture {
public:
    IPicture() = default;
    IPicture(const IPicture&) = delete;
    IPicture& operator=(const IPicture&) = delete;
    virtual ~IPicture() = default;

    virtual HRESULT Shape(PictureShape& shape) const = 0;

    // Carries the order out. Its format is a rendered one and its rows are large enough: callers
    // see to that.
    virtual HRESULT Render(const Rendering& rendering) = 0;

    virtual HRESULT Palette(IWICPalette& palette) = 0;
};

} // namespace wic
