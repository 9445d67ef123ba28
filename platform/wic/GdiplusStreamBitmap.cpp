#include "platform/wic/GdiplusStreamBitmap.h"

#include <cstddef>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "platform/wic/GdiplusBitmap.h"
#include "platform/wic/PngReader.h"

namespace Gdiplus {

namespace {

constexpr int BytesPerPixel = 4;

PixelFormat FormatOf(const wic::PngHeader& header) {
    if (header.indexed) {
        return PixelFormat8bppIndexed;
    }
    return header.hasAlpha ? PixelFormat32bppARGB : PixelFormat24bppRGB;
}

class StreamBitmap final : public GpBitmap {
public:
    StreamBitmap(wic::PngReader reader, const wic::PngHeader& header)
        : GpBitmap(header.width, header.height, FormatOf(header))
        , m_reader(std::move(reader))
        , m_header(header) {}

    GpStatus Lock(const GpRect& rect, BitmapData& locked) {
        if (m_pixels != nullptr) {
            return GenericError;
        }
        // Not cleared: what a header promises and the file does not hold takes no memory then.
        m_pixels.reset(new (std::nothrow) std::uint8_t[m_header.Pixels() * BytesPerPixel]);
        if (m_pixels == nullptr) {
            return OutOfMemory;
        }
        if (!m_reader.ReadPixels(m_header, m_pixels.get())) {
            m_pixels.reset();
            return GenericError;
        }
        const int stride = Width() * BytesPerPixel;
        locked = {static_cast<unsigned int>(rect.Width),
                  static_cast<unsigned int>(rect.Height),
                  stride,
                  PixelFormat32bppARGB,
                  m_pixels.get() + std::ptrdiff_t{rect.Y} * stride +
                      std::ptrdiff_t{rect.X} * BytesPerPixel,
                  0};
        return Ok;
    }

    GpStatus Unlock() {
        if (m_pixels == nullptr) {
            return GenericError;
        }
        m_pixels.reset();
        return Ok;
    }

private:
    wic::PngReader m_reader;
    wic::PngHeader m_header;
    std::unique_ptr<std::uint8_t[]> m_pixels; // while they are locked
};

bool IsWithin(const GpRect& rect, const GpBitmap& bitmap) {
    return rect.X >= 0 && rect.Y >= 0 && rect.Width > 0 && rect.Height > 0 &&
           rect.X <= bitmap.Width() - rect.Width && rect.Y <= bitmap.Height() - rect.Height;
}

} // namespace

namespace DllExports {

GpStatus GdipCreateBitmapFromStream(IStream* stream, GpBitmap** bitmap) {
    if (stream == nullptr || bitmap == nullptr) {
        return InvalidParameter;
    }
    *bitmap = nullptr;
    wic::PngReader reader(stream);
    const std::optional<wic::PngHeader> header = reader.ReadHeader();
    if (!header) {
        return GenericError;
    }
    *bitmap = new (std::nothrow) StreamBitmap(std::move(reader), *header);
    return *bitmap != nullptr ? Ok : OutOfMemory;
}

GpStatus GdipGetImagePixelFormat(GpImage* image, PixelFormat* format) {
    const auto* bitmap = dynamic_cast<const GpBitmap*>(image);
    if (bitmap == nullptr || format == nullptr) {
        return InvalidParameter;
    }
    *format = bitmap->Format();
    return Ok;
}

GpStatus GdipBitmapLockBits(GpBitmap* bitmap, const GpRect* rect, unsigned int flags,
                            PixelFormat format, BitmapData* lockedBitmapData) {
    auto* picture = dynamic_cast<StreamBitmap*>(bitmap);
    if (picture == nullptr || lockedBitmapData == nullptr || flags != ImageLockModeRead ||
        format != PixelFormat32bppARGB || picture->Format() != format) {
        return InvalidParameter;
    }
    const GpRect whole{0, 0, picture->Width(), picture->Height()};
    const GpRect& wanted = rect != nullptr ? *rect : whole;
    return IsWithin(wanted, *picture) ? picture->Lock(wanted, *lockedBitmapData) : InvalidParameter;
}

GpStatus GdipBitmapUnlockBits(GpBitmap* bitmap, BitmapData* lockedBitmapData) {
    auto* picture = dynamic_cast<StreamBitmap*>(bitmap);
    return picture == nullptr || lockedBitmapData == nullptr ? InvalidParameter : picture->Unlock();
}

} // namespace DllExports

} // namespace Gdiplus
