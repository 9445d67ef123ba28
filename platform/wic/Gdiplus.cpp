#include "platform/wic/Gdiplus.h"

#include <algorithm>
#include <new>
#include <utility>

#include "platform/wic/PngFile.h"
#include "platform/win32/Path.h"
#include "platform/win32/ReplacingFile.h"
#include "platform/win32/Text.h"

namespace Gdiplus {

namespace {

constexpr CLSID PngEncoderClass = {
    0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
constexpr GUID PngFormat = {
    0xB96B3CAF, 0x0728, 0x11D3, {0x9D, 0x7B, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

// ImageCodecFlagsEncoder | ImageCodecFlagsSupportBitmap | ImageCodecFlagsBuiltin
constexpr std::uint32_t BuiltInBitmapEncoder = 0x1 | 0x4 | 0x10000;

ImageCodecInfo PngEncoder() {
    ImageCodecInfo codec{};
    codec.Clsid = PngEncoderClass;
    codec.FormatID = PngFormat;
    codec.CodecName = L"Built-in PNG Codec";
    codec.FormatDescription = L"PNG";
    codec.FilenameExtension = L"*.PNG";
    codec.MimeType = L"image/png";
    codec.Flags = BuiltInBitmapEncoder;
    codec.Version = 1;
    return codec;
}

std::vector<ImageCodecInfo>& Encoders() {
    static std::vector<ImageCodecInfo> encoders{PngEncoder()};
    return encoders;
}

unsigned int EncoderCount() {
    return static_cast<unsigned int>(Encoders().size());
}

bool IsKnownFormat(PixelFormat format) {
    return format == PixelFormat32bppARGB || format == PixelFormat32bppPARGB;
}

GpStatus SavePng(const GpMemoryBitmap& bitmap, const wchar_t* filename) {
    win32::ReplacingFile file(win32::ExistingPath(win32::WideToUtf8(filename)));
    if (file.Stream() == nullptr) {
        return Win32Error;
    }
    const bool premultiplied = bitmap.Format() == PixelFormat32bppPARGB;
    const wic::BgraPicture picture{bitmap.Width(), bitmap.Height(), bitmap.Stride(),
                                   bitmap.Scan0()};
    const bool written = premultiplied ? wic::WritePremultipliedPng(picture, file.Stream())
                                       : wic::WritePng(picture, file.Stream());
    if (!written) {
        return GenericError;
    }
    return file.Commit() ? Ok : Win32Error;
}

} // namespace

std::vector<ImageCodecInfo> SetImageEncoders(std::vector<ImageCodecInfo> encoders) {
    return std::exchange(Encoders(), std::move(encoders));
}

namespace DllExports {

GpStatus GdipGetImageEncodersSize(unsigned int* numEncoders, unsigned int* size) {
    if (numEncoders == nullptr || size == nullptr) {
        return InvalidParameter;
    }
    *numEncoders = EncoderCount();
    *size = EncoderCount() * static_cast<unsigned int>(sizeof(ImageCodecInfo));
    return Ok;
}

GpStatus GdipGetImageEncoders(unsigned int numEncoders, unsigned int size,
                              ImageCodecInfo* encoders) {
    if (encoders == nullptr) {
        return InvalidParameter;
    }
    if (numEncoders < EncoderCount() || size / sizeof(ImageCodecInfo) < EncoderCount()) {
        return InsufficientBuffer;
    }
    std::copy(Encoders().begin(), Encoders().end(), encoders);
    return Ok;
}

GpStatus GdipCreateBitmapFromScan0(int width, int height, int stride, PixelFormat format,
                                   std::uint8_t* scan0, GpBitmap** bitmap) {
    if (bitmap == nullptr) {
        return InvalidParameter;
    }
    *bitmap = nullptr;
    if (width <= 0 || height <= 0 || scan0 == nullptr || !IsKnownFormat(format)) {
        return InvalidParameter;
    }
    if (stride % 4 != 0 || stride / 4 < width) {
        return InvalidParameter;
    }
    *bitmap = new (std::nothrow) GpMemoryBitmap(width, height, stride, format, scan0);
    return *bitmap != nullptr ? Ok : OutOfMemory;
}

GpStatus GdipSaveImageToFile(GpImage* image, const wchar_t* filename, const CLSID* clsidEncoder,
                             const EncoderParameters* encoderParams) {
    const auto* const bitmap = dynamic_cast<const GpMemoryBitmap*>(image);
    if (bitmap == nullptr || filename == nullptr || clsidEncoder == nullptr) {
        return InvalidParameter;
    }
    if (encoderParams != nullptr) {
        return InvalidParameter;
    }
    if (*clsidEncoder != PngEncoderClass) {
        return UnknownImageFormat;
    }
    try {
        return SavePng(*bitmap, filename);
    } catch (const std::bad_alloc&) {
        return OutOfMemory;
    }
}

GpStatus GdipDisposeImage(GpImage* image) {
    if (image == nullptr) {
        return InvalidParameter;
    }
    delete image;
    return Ok;
}

} // namespace DllExports

} // namespace Gdiplus
