// GDI+ as far as pictures in memory are saved with it. Stands for gdiplus.h and its flat functions;
// names, values and argument order are that header's.
//
// The one encoder is PNG, on libpng. Pictures from streams: GdiplusStreamBitmap.h.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/com/Guid.h"

namespace Gdiplus {

// What the flat functions answer. Nothing is thrown through them.
enum Status {
    Ok = 0,
    GenericError = 1,
    InvalidParameter = 2,
    OutOfMemory = 3,
    InsufficientBuffer = 5,
    Win32Error = 7,
    UnknownImageFormat = 13,
};

using GpStatus = Status;

// Both hold blue, green, red, alpha in memory; in PARGB the colours are multiplied by the alpha.
using PixelFormat = int;
inline constexpr PixelFormat PixelFormat32bppARGB = 0x26200A;
inline constexpr PixelFormat PixelFormat32bppPARGB = 0xE200B;

class ImageCodecInfo {
public:
    CLSID Clsid;
    GUID FormatID;
    const wchar_t* CodecName;
    const wchar_t* DllName;
    const wchar_t* FormatDescription;
    const wchar_t* FilenameExtension;
    const wchar_t* MimeType;
    std::uint32_t Flags;
    std::uint32_t Version;
    std::uint32_t SigCount;
    std::uint32_t SigSize;
    const std::uint8_t* SigPattern;
    const std::uint8_t* SigMask;
};

class EncoderParameters; // none are understood

class GpImage {
public:
    GpImage(const GpImage&) = delete;
    GpImage& operator=(const GpImage&) = delete;
    virtual ~GpImage() = default;

protected:
    GpImage() = default;
};

class GpBitmap : public GpImage {
public:
    int Width() const { return m_width; }

    int Height() const { return m_height; }

    PixelFormat Format() const { return m_format; }

protected:
    GpBitmap(int width, int height, PixelFormat format)
        : m_width(width)
        , m_height(height)
        , m_format(format) {}

private:
    int m_width;
    int m_height;
    PixelFormat m_format;
};

// Pixels in memory that stay the caller's.
class GpMemoryBitmap : public GpBitmap {
public:
    GpMemoryBitmap(int width, int height, int stride, PixelFormat format, const std::uint8_t* scan0)
        : GpBitmap(width, height, format)
        , m_stride(stride)
        , m_scan0(scan0) {}

    int Stride() const { return m_stride; } // bytes, at least Width() * 4

    const std::uint8_t* Scan0() const { return m_scan0; } // the top row

private:
    int m_stride;
    const std::uint8_t* m_scan0;
};

// What the two encoder functions list from now on; answers what they listed before. For tests that
// need a machine without an encoder. The texts must stay valid; no other thread may be in here.
std::vector<ImageCodecInfo> SetImageEncoders(std::vector<ImageCodecInfo> encoders);

// Thread-safety: safe from any thread, on different images.
namespace DllExports {

// How many encoders there are, and the bytes that their list takes.
GpStatus GdipGetImageEncodersSize(unsigned int* numEncoders, unsigned int* size);

// Fills in the list. InsufficientBuffer, and nothing written, when the two numbers are not enough.
GpStatus GdipGetImageEncoders(unsigned int numEncoders, unsigned int size,
                              ImageCodecInfo* encoders);

// An image over the memory at scan0, which must outlive it; GdipDisposeImage ends it.
// InvalidParameter and a null image when there are no pixels, no memory, another format than the
// two above, or a stride that is no multiple of 4 or shorter than a row.
GpStatus GdipCreateBitmapFromScan0(int width, int height, int stride, PixelFormat format,
                                   std::uint8_t* scan0, GpBitmap** bitmap);

// Writes the image to the file `filename`, replacing a file there, whole or not at all.
// InvalidParameter for a null argument (encoderParams must be null) and for a bitmap that is not
// over memory, UnknownImageFormat for another encoder than PNG's, OutOfMemory, Win32Error when the
// file cannot be written, GenericError when the picture cannot be encoded: libpng takes up to a
// million pixels a side.
GpStatus GdipSaveImageToFile(GpImage* image, const wchar_t* filename, const CLSID* clsidEncoder,
                             const EncoderParameters* encoderParams);

// InvalidParameter for null.
GpStatus GdipDisposeImage(GpImage* image);

} // namespace DllExports

} // namespace Gdiplus
