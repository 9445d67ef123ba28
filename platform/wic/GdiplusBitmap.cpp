#include "platform/wic/GdiplusBitmap.h"

#include <cstddef>

namespace Gdiplus {

Bitmap::Bitmap(int width, int height, int stride, PixelFormat format, std::uint8_t* scan0) {
    if (width <= 0 || height <= 0 || scan0 == nullptr || format != PixelFormat24bppRGB ||
        stride % 4 != 0 || stride / 3 < width) {
        return;
    }
    m_width = width;
    m_height = height;
    m_stride = stride;
    m_scan0 = scan0;
    m_status = Ok;
}

Status Bitmap::GetPixel(int x, int y, Color* color) const {
    if (color == nullptr || x < 0 || x >= m_width || y < 0 || y >= m_height) {
        return InvalidParameter;
    }
    const std::uint8_t* pixel = m_scan0 + std::ptrdiff_t{m_stride} * y + std::ptrdiff_t{x} * 3;
    *color = Color(255, pixel[2], pixel[1], pixel[0]);
    return Ok;
}

} // namespace Gdiplus
