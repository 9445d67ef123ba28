// Pictures of GDI+ over a caller's memory. Stands for gdiplusbitmap.h.
#pragma once

#include "platform/wic/Gdiplus.h"
#include "platform/wic/GdiplusColor.h"

namespace Gdiplus {

// Blue, green, red in memory, without alpha.
inline constexpr PixelFormat PixelFormat24bppRGB = 0x21808;

// Thread-safety: none.
class Bitmap {
public:
    // Over the rows at `scan0`, the top one first, `stride` bytes apart; they stay the caller's and
    // must outlive the bitmap. The status is InvalidParameter where there are no pixels, no memory,
    // a stride that is no multiple of 4 or shorter than a row, or another format than
    // PixelFormat24bppRGB.
    Bitmap(int width, int height, int stride, PixelFormat format, std::uint8_t* scan0);

    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
    virtual ~Bitmap() = default;

    Status GetLastStatus() const { return m_status; }

    unsigned int GetWidth() const { return static_cast<unsigned int>(m_width); }

    unsigned int GetHeight() const { return static_cast<unsigned int>(m_height); }

    PixelFormat GetPixelFormat() const { return PixelFormat24bppRGB; }

    // InvalidParameter outside the picture.
    Status GetPixel(int x, int y, Color* color) const;

private:
    int m_width = 0;
    int m_height = 0;
    int m_stride = 0;
    const std::uint8_t* m_scan0 = nullptr;
    Status m_status = InvalidParameter;
};

} // namespace Gdiplus
