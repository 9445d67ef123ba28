#include "platform/wic/Stages.h"

#include <algorithm>
#include <vector>

#include "platform/wic/SourceObject.h"
#include "platform/wic/VipsRendering.h"

namespace wic {

namespace {

// A source made of another one, which it is given later, once.
template <typename Interface>
class Stage : public SourceObject<Interface> {
public:
    // IPicture
    HRESULT Palette(IWICPalette& palette) override {
        return m_source ? m_source->Palette(palette) : WINCODEC_ERR_NOTINITIALIZED;
    }

protected:
    HRESULT Start(IWICBitmapSource* source) {
        if (source == nullptr) {
            return E_INVALIDARG;
        }
        if (m_source) {
            return WINCODEC_ERR_WRONGSTATE;
        }
        return com::Wall([&] {
            m_source.Hold(source);
            return S_OK;
        });
    }

    HRESULT SourceShape(PictureShape& shape) const {
        return m_source ? m_source->Shape(shape) : WINCODEC_ERR_NOTINITIALIZED;
    }

    PictureRef m_source;
};

class FormatConverter final : public Stage<IWICFormatConverter> {
public:
    // IWICFormatConverter
    HRESULT Initialize(IWICBitmapSource* source, REFWICPixelFormatGUID format, WICBitmapDitherType,
                       IWICPalette*, double, WICBitmapPaletteType) override {
        if (!IsRendered(format)) {
            return WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
        }
        m_format = format;
        return Start(source);
    }

    // IPicture
    HRESULT Shape(PictureShape& shape) const override {
        const HRESULT result = SourceShape(shape);
        shape.format = m_format;
        return result;
    }

    // The order's format is that of whoever asks, and the last conversion is the one that counts.
    HRESULT Render(const Rendering& rendering) override { return m_source->Render(rendering); }

private:
    void* Find(REFIID iid) override {
        return iid == IID_IWICBitmapSource ? static_cast<IWICBitmapSource*>(this)
                                           : com::Among(iid, IID_IWICFormatConverter,
                                                        static_cast<IWICFormatConverter*>(this));
    }

    WICPixelFormatGUID m_format{};
};

class Scaler final : public Stage<IWICBitmapScaler> {
public:
    // IWICBitmapScaler
    HRESULT Initialize(IWICBitmapSource* source, UINT width, UINT height,
                       WICBitmapInterpolationMode mode) override {
        if (width == 0 || height == 0 || mode != WICBitmapInterpolationModeCubic) {
            return E_INVALIDARG;
        }
        m_width = width;
        m_height = height;
        return Start(source);
    }

    // IPicture
    HRESULT Shape(PictureShape& shape) const override {
        const HRESULT result = SourceShape(shape);
        shape.width = m_width;
        shape.height = m_height;
        return result;
    }

    // The order's size is this one's or that of a scaler after it, which spares this step.
    HRESULT Render(const Rendering& rendering) override { return m_source->Render(rendering); }

private:
    void* Find(REFIID iid) override {
        return iid == IID_IWICBitmapSource
                   ? static_cast<IWICBitmapSource*>(this)
                   : com::Among(iid, IID_IWICBitmapScaler, static_cast<IWICBitmapScaler*>(this));
    }

    UINT m_width = 0;
    UINT m_height = 0;
};

class FlipRotator final : public Stage<IWICBitmapFlipRotator> {
public:
    // IWICBitmapFlipRotator
    HRESULT Initialize(IWICBitmapSource* source, WICBitmapTransformOptions options) override {
        m_turn = Turn::Of(options);
        return Start(source);
    }

    // IPicture
    HRESULT Shape(PictureShape& shape) const override {
        const HRESULT result = SourceShape(shape);
        if (m_turn.SwapsSides()) {
            std::swap(shape.width, shape.height);
            std::swap(shape.dpiX, shape.dpiY);
        }
        return result;
    }

    HRESULT Render(const Rendering& rendering) override {
        Rendering before = rendering;
        if (m_turn.SwapsSides()) {
            std::swap(before.width, before.height);
        }
        before.turn = m_turn.Then(rendering.turn);
        return m_source->Render(before);
    }

private:
    void* Find(REFIID iid) override {
        return iid == IID_IWICBitmapSource ? static_cast<IWICBitmapSource*>(this)
                                           : com::Among(iid, IID_IWICBitmapFlipRotator,
                                                        static_cast<IWICBitmapFlipRotator*>(this));
    }

    Turn m_turn;
};

class MemoryBitmap final : public SourceObject<IWICBitmap> {
public:
    MemoryBitmap(UINT width, UINT height)
        : m_width(width)
        , m_height(height)
        , m_bits(std::make_unique<BYTE[]>(std::size_t{width} * height * 4)) {}

    BYTE* Bits() { return m_bits.get(); }

    // IPicture
    HRESULT Shape(PictureShape& shape) const override {
        shape = {m_width, m_height, GUID_WICPixelFormat32bppPBGRA};
        return S_OK;
    }

    HRESULT Render(const Rendering& rendering) override {
        return RenderMemory(m_bits.get(), {m_width, m_height}, {PixelLayout::Bgra, true},
                            rendering);
    }

    HRESULT Palette(IWICPalette&) override { return WINCODEC_ERR_PALETTEUNAVAILABLE; }

private:
    void* Find(REFIID iid) override {
        return iid == IID_IWICBitmapSource
                   ? static_cast<IWICBitmapSource*>(this)
                   : com::Among(iid, IID_IWICBitmap, static_cast<IWICBitmap*>(this));
    }

    UINT m_width;
    UINT m_height;
    std::unique_ptr<BYTE[]> m_bits;
};

class Palette final : public com::Object<IWICPalette> {
public:
    // IWICPalette
    HRESULT InitializeCustom(WICColor* colors, UINT colorCount) override {
        constexpr UINT most = 256;
        if (colors == nullptr || colorCount > most) {
            return E_INVALIDARG;
        }
        return com::Wall([&] {
            m_colours.assign(colors, colors + colorCount);
            m_initialized = true;
            return S_OK;
        });
    }

    HRESULT GetColorCount(UINT* count) override {
        if (count == nullptr) {
            return E_INVALIDARG;
        }
        *count = static_cast<UINT>(m_colours.size());
        return S_OK;
    }

    HRESULT GetColors(UINT capacity, WICColor* colors, UINT* actualColors) override {
        if (colors == nullptr || actualColors == nullptr) {
            return E_INVALIDARG;
        }
        if (!m_initialized) {
            return WINCODEC_ERR_NOTINITIALIZED;
        }
        *actualColors = std::min(capacity, static_cast<UINT>(m_colours.size()));
        std::copy_n(m_colours.begin(), *actualColors, colors);
        return S_OK;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IWICPalette, static_cast<IWICPalette*>(this));
    }

    std::vector<WICColor> m_colours;
    bool m_initialized = false;
};

class PixelFormatInfo final : public com::Object<IWICPixelFormatInfo> {
public:
    explicit PixelFormatInfo(UINT bits)
        : m_bits(bits) {}

    // IWICPixelFormatInfo
    HRESULT GetBitsPerPixel(UINT* bits) override {
        if (bits == nullptr) {
            return E_INVALIDARG;
        }
        *bits = m_bits;
        return S_OK;
    }

private:
    void* Find(REFIID iid) override {
        return iid == IID_IWICComponentInfo ? static_cast<IWICComponentInfo*>(this)
                                            : com::Among(iid, IID_IWICPixelFormatInfo,
                                                         static_cast<IWICPixelFormatInfo*>(this));
    }

    UINT m_bits;
};

} // namespace

HRESULT MakeFormatConverter(IWICFormatConverter** converter) {
    return com::Make<FormatConverter>(converter);
}

HRESULT MakeScaler(IWICBitmapScaler** scaler) {
    return com::Make<Scaler>(scaler);
}

HRESULT MakeFlipRotator(IWICBitmapFlipRotator** rotator) {
    return com::Make<FlipRotator>(rotator);
}

HRESULT MakeBitmap(UINT width, UINT height, REFWICPixelFormatGUID format, IWICBitmap** bitmap) {
    if (bitmap == nullptr || width == 0 || height == 0) {
        return E_INVALIDARG;
    }
    if (format != GUID_WICPixelFormat32bppPBGRA) {
        return WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
    }
    if (std::uint64_t{width} * height > MaxSurfacePixels) {
        return WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
    }
    return com::Make<MemoryBitmap>(bitmap, width, height);
}

HRESULT MakePalette(IWICPalette** palette) {
    return com::Make<Palette>(palette);
}

HRESULT MakePixelFormatInfo(REFWICPixelFormatGUID format, IWICComponentInfo** info) {
    const UINT bits = BitsPerPixel(format);
    return bits != 0 ? com::Make<PixelFormatInfo>(info, bits) : WINCODEC_ERR_COMPONENTNOTFOUND;
}

BYTE* BitsOf(IWICBitmap* bitmap) {
    auto* const memory = dynamic_cast<MemoryBitmap*>(bitmap);
    return memory != nullptr ? memory->Bits() : nullptr;
}

} // namespace wic
