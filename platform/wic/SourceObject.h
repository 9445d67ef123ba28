// What all sources of pixels have in common.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/com/Object.h"
#include "platform/wic/Rendering.h"
#include "platform/wic/WinCodec.h"

namespace wic {

// The calls of IWICBitmapSource on a picture. Interface: IWICBitmapSource or one derived from it.
template <typename Interface>
class SourceObject : public com::Object<Interface>, public IPicture {
public:
    // IWICBitmapSource
    HRESULT GetSize(UINT* width, UINT* height) override {
        if (width == nullptr || height == nullptr) {
            return E_INVALIDARG;
        }
        PictureShape shape;
        const HRESULT result = this->Shape(shape);
        if (SUCCEEDED(result)) {
            *width = shape.width;
            *height = shape.height;
        }
        return result;
    }

    HRESULT GetPixelFormat(WICPixelFormatGUID* format) override {
        if (format == nullptr) {
            return E_INVALIDARG;
        }
        PictureShape shape;
        const HRESULT result = this->Shape(shape);
        if (SUCCEEDED(result)) {
            *format = shape.format;
        }
        return result;
    }

    HRESULT GetResolution(double* dpiX, double* dpiY) override {
        if (dpiX == nullptr || dpiY == nullptr) {
            return E_INVALIDARG;
        }
        PictureShape shape;
        const HRESULT result = this->Shape(shape);
        if (SUCCEEDED(result)) {
            *dpiX = shape.dpiX;
            *dpiY = shape.dpiY;
        }
        return result;
    }

    HRESULT CopyPalette(IWICPalette* palette) override {
        return palette != nullptr ? this->Palette(*palette) : E_INVALIDARG;
    }

    HRESULT CopyPixels(const WICRect* rect, UINT stride, UINT bufferSize, BYTE* buffer) override {
        PictureShape shape;
        const HRESULT result = this->Shape(shape);
        if (FAILED(result)) {
            return result;
        }
        if (buffer == nullptr) {
            return E_INVALIDARG;
        }
        if (!IsRendered(shape.format)) {
            return WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
        }
        if (rect != nullptr && !IsWhole(*rect, shape)) {
            return WINCODEC_ERR_UNSUPPORTEDOPERATION;
        }
        if (!Fits(shape, stride, bufferSize)) {
            return WINCODEC_ERR_INSUFFICIENTBUFFER;
        }
        return com::Wall([&] {
            return this->Render({shape.width, shape.height, shape.format, Turn(), stride, buffer});
        });
    }

private:
    static bool IsWhole(const WICRect& rect, const PictureShape& shape) {
        return rect.X == 0 && rect.Y == 0 && static_cast<UINT>(rect.Width) == shape.width &&
               static_cast<UINT>(rect.Height) == shape.height;
    }

    static bool Fits(const PictureShape& shape, UINT stride, UINT bufferSize) {
        const std::uint64_t row = std::uint64_t{shape.width} * BitsPerPixel(shape.format) / 8;
        return shape.height > 0 && row <= stride &&
               std::uint64_t{stride} * (shape.height - 1) + row <= bufferSize;
    }
};

// A source that a chain goes on from: of this layer, or somebody else's.
//
// Thread-safety: none.
class PictureRef {
public:
    // Takes a reference.
    void Hold(IWICBitmapSource* source);

    explicit operator bool() const { return m_picture != nullptr; }

    IPicture* operator->() const { return m_picture; }

private:
    com::ComPtr<IWICBitmapSource> m_source;
    std::unique_ptr<IPicture> m_foreign; // what makes a picture of somebody else's source
    IPicture* m_picture = nullptr;       // within one of the two
};

} // namespace wic
