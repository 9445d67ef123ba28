#include "platform/wic/SourceObject.h"

#include "platform/wic/VipsRendering.h"

namespace wic {

namespace {

// A source that is known by its interface alone: all its pixels are copied, then rendered.
class ForeignPicture final : public IPicture {
public:
    explicit ForeignPicture(IWICBitmapSource& source)
        : m_source(source) {}

    HRESULT Shape(PictureShape& shape) const override {
        HRESULT result = m_source.GetSize(&shape.width, &shape.height);
        if (SUCCEEDED(result)) {
            result = m_source.GetPixelFormat(&shape.format);
        }
        return SUCCEEDED(result) ? m_source.GetResolution(&shape.dpiX, &shape.dpiY) : result;
    }

    HRESULT Render(const Rendering& rendering) override {
        PictureShape shape;
        const HRESULT known = Shape(shape);
        if (FAILED(known)) {
            return known;
        }
        if (BitsPerPixel(shape.format) != 32 || !IsRendered(shape.format)) {
            return WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT;
        }
        if (std::uint64_t{shape.width} * shape.height > MaxPicturePixels) {
            return WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
        }
        const UINT stride = shape.width * 4;
        const UINT size = stride * shape.height;
        const auto pixels = std::make_unique_for_overwrite<BYTE[]>(size);
        const HRESULT copied = m_source.CopyPixels(nullptr, stride, size, pixels.get());
        const bool premultiplied = shape.format == GUID_WICPixelFormat32bppPBGRA;
        return FAILED(copied) ? copied
                              : RenderMemory(pixels.get(), shape,
                                             {PixelLayout::Bgra, premultiplied}, rendering);
    }

    HRESULT Palette(IWICPalette& palette) override { return m_source.CopyPalette(&palette); }

private:
    IWICBitmapSource& m_source;
};

} // namespace

void PictureRef::Hold(IWICBitmapSource* source) {
    m_source = com::ComPtr(source);
    m_picture = dynamic_cast<IPicture*>(source);
    if (m_picture == nullptr) {
        m_foreign = std::make_unique<ForeignPicture>(*source);
        m_picture = m_foreign.get();
    }
}

} // namespace wic
