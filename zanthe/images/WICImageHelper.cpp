#include "zanthe/images/WICImageHelper.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include <boost/make_shared.hpp>

#include "platform/com/ClassRegistry.h"
#include "platform/com/ComPtr.h"
#include "platform/wic/GdiplusBitmap.h"
#include "platform/wic/WinCodec.h"
#include "zanthe/analysis/FitSizeToBounds.h"

namespace Zanthe {

namespace {

constexpr unsigned int BytesPerPixel = 4;

// A bitmap and the memory that it stands on.
class BitmapWithMemory final : public Gdiplus::Bitmap {
public:
    BitmapWithMemory(int width, int height, int stride, std::unique_ptr<unsigned char[]> memory)
        : Gdiplus::Bitmap(width, height, stride, Gdiplus::PixelFormat24bppRGB, memory.get())
        , m_memory(std::move(memory)) {}

private:
    std::unique_ptr<unsigned char[]> m_memory;
};

// What else a source gives would leave part of each row as it was.
bool HasFourBytesAPixel(IWICBitmapSource& source) {
    WICPixelFormatGUID format{};
    return SUCCEEDED(source.GetPixelFormat(&format)) &&
           wic::BitsPerPixel(format) == BytesPerPixel * 8;
}

HRESULT Converted(IWICBitmapSource* source, com::ComPtr<IWICFormatConverter>& converter) {
    com::ComPtr<IWICImagingFactory> factory;
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      IID_IWICImagingFactory, factory.PutVoid());
    if (SUCCEEDED(result)) {
        result = factory->CreateFormatConverter(converter.Put());
    }
    if (SUCCEEDED(result)) {
        result = converter->Initialize(source, GUID_WICPixelFormat24bppBGR, WICBitmapDitherTypeNone,
                                       nullptr, 0.0, WICBitmapPaletteTypeCustom);
    }
    return result;
}

// Pixels of three bytes, rows filled up to a multiple of four.
struct PackedPixels {
    UINT width = 0;
    UINT height = 0;
    UINT stride = 0;
    std::unique_ptr<unsigned char[]> memory;
};

HRESULT CopyPacked(IWICBitmapSource& source, PackedPixels& pixels) {
    HRESULT result = source.GetSize(&pixels.width, &pixels.height);
    double dpiX = 0;
    double dpiY = 0;
    if (SUCCEEDED(result)) {
        result = source.GetResolution(&dpiX, &dpiY);
    }
    if (FAILED(result)) {
        return result;
    }
    const std::uint64_t stride = (std::uint64_t{pixels.width} * 3 + 3) & ~std::uint64_t{3};
    if (stride == 0 || pixels.height == 0 ||
        stride > static_cast<std::uint64_t>(std::numeric_limits<int>::max()) / pixels.height) {
        return E_FAIL;
    }
    pixels.stride = static_cast<UINT>(stride);
    const UINT size = pixels.stride * pixels.height;
    pixels.memory.reset(new (std::nothrow) unsigned char[size]);
    return pixels.memory ? source.CopyPixels(nullptr, pixels.stride, size, pixels.memory.get())
                         : E_OUTOFMEMORY;
}

} // namespace

void WICImageHelper::GetCappedImageSize(int& width, int& height, int maxDimension) {
    if (width > maxDimension || height > maxDimension) {
        FitSizeToBounds(width, height, maxDimension, maxDimension);
    }
}

boost::shared_ptr<Bitmap>
WICImageHelper::CreateBitmapFromWICBitmapSource(IWICBitmapSource* source) {
    UINT width = 0;
    UINT height = 0;
    if (source == nullptr || !HasFourBytesAPixel(*source) ||
        FAILED(source->GetSize(&width, &height))) {
        return nullptr;
    }
    auto bitmap =
        boost::make_shared<Bitmap>(static_cast<int>(width), static_cast<int>(height), true);
    const HRESULT copied = source->CopyPixels(nullptr, width * BytesPerPixel,
                                              width * BytesPerPixel * height, bitmap->GetBits());
    return SUCCEEDED(copied) ? bitmap : nullptr;
}

HRESULT WICImageHelper::CopyWICBitmapSourceToBuffer(IWICBitmapSource* source,
                                                    unsigned char* buffer) {
    if (source == nullptr || buffer == nullptr) {
        return E_INVALIDARG;
    }
    if (!HasFourBytesAPixel(*source)) {
        return WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
    }
    UINT width = 0;
    UINT height = 0;
    const HRESULT sized = source->GetSize(&width, &height);
    return SUCCEEDED(sized) ? source->CopyPixels(nullptr, width * BytesPerPixel,
                                                 width * BytesPerPixel * height, buffer)
                            : sized;
}

HRESULT WICImageHelper::BitmapSourceToGdiPlusBitmap(IWICBitmapSource* source,
                                                    Gdiplus::Bitmap** bitmap,
                                                    unsigned char** memory) {
    if (source == nullptr || bitmap == nullptr) {
        return E_INVALIDARG;
    }
    com::ComPtr<IWICFormatConverter> converter;
    HRESULT result = Converted(source, converter);
    PackedPixels pixels;
    if (SUCCEEDED(result)) {
        result = CopyPacked(*converter, pixels);
    }
    if (FAILED(result)) {
        return result;
    }
    const auto width = static_cast<int>(pixels.width);
    const auto height = static_cast<int>(pixels.height);
    const auto stride = static_cast<int>(pixels.stride);
    *bitmap =
        memory == nullptr
            ? new (std::nothrow) BitmapWithMemory(width, height, stride, std::move(pixels.memory))
            : new (std::nothrow) Gdiplus::Bitmap(width, height, stride,
                                                 Gdiplus::PixelFormat24bppRGB, pixels.memory.get());
    if (*bitmap != nullptr && memory != nullptr) {
        *memory = pixels.memory.release();
    }
    return *bitmap != nullptr ? S_OK : E_OUTOFMEMORY;
}

} // namespace Zanthe
