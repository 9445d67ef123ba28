#include "zanthe/core/PngEncoder.h"

#include <cstdlib>
#include <memory>
#include <string_view>

#include "platform/wic/Gdiplus.h"
#include "platform/win32/Text.h"
#include "zanthe/core/Bitmap.h"

namespace Zanthe {

namespace {

using namespace Gdiplus::DllExports;

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

struct DisposeImage {
    void operator()(Gdiplus::GpImage* image) const { GdipDisposeImage(image); }
};

using ImagePtr = std::unique_ptr<Gdiplus::GpBitmap, DisposeImage>;

bool IsPngEncoder(const Gdiplus::ImageCodecInfo& codec) {
    return codec.MimeType != nullptr && std::wstring_view(codec.MimeType) == L"image/png";
}

// GDI+ reads the bitmap's own memory: the image must go before the bitmap changes.
ImagePtr ImageOver(const Bitmap& bitmap) {
    const auto format = bitmap.GetPreMultipliedAlpha() ? Gdiplus::PixelFormat32bppPARGB
                                                       : Gdiplus::PixelFormat32bppARGB;
    Gdiplus::GpBitmap* image = nullptr;
    GdipCreateBitmapFromScan0(bitmap.GetWidth(), bitmap.GetHeight(), bitmap.GetStride(), format,
                              bitmap.GetBits(), &image);
    return ImagePtr(image);
}

} // namespace

std::optional<CLSID> FindPngEncoder() {
    unsigned int count = 0;
    unsigned int bytes = 0;
    GdipGetImageEncodersSize(&count, &bytes);
    // The size is more than the array when GDI+ puts the texts behind it, hence bytes and not
    // codecs.
    const std::unique_ptr<void, FreeMemory> memory(bytes != 0 ? std::malloc(bytes) : nullptr);
    auto* const codecs = static_cast<Gdiplus::ImageCodecInfo*>(memory.get());
    if (codecs == nullptr || GdipGetImageEncoders(count, bytes, codecs) != Gdiplus::Ok) {
        return std::nullopt;
    }
    for (unsigned int i = 0; i < count; ++i) {
        if (IsPngEncoder(codecs[i])) {
            return codecs[i].Clsid;
        }
    }
    return std::nullopt;
}

bool SaveWithEncoder(const Bitmap& bitmap, const CLSID& encoder, const std::string& filePath) {
    // An image that could not be made is null, which the next call answers with a failure.
    const ImagePtr image = ImageOver(bitmap);
    const std::wstring widePath = win32::Utf8ToWide(filePath);
    return GdipSaveImageToFile(image.get(), widePath.c_str(), &encoder, nullptr) == Gdiplus::Ok;
}

} // namespace Zanthe
