#include "platform/wic/GifDecoder.h"

#include <utility>

#include "platform/wic/GifFile.h"
#include "platform/wic/MetadataItems.h"
#include "platform/wic/SourceObject.h"
#include "platform/wic/VipsRendering.h"

namespace wic {

namespace {

MetadataItems ItemsOf(const GifFrameEntry& frame) {
    MetadataItems items;
    items[L"/imgdesc/Left"] = frame.left;
    items[L"/imgdesc/Top"] = frame.top;
    items[L"/imgdesc/Width"] = frame.width;
    items[L"/imgdesc/Height"] = frame.height;
    if (frame.hasControl) {
        items[L"/grctlext/Delay"] = frame.control.delay;
        items[L"/grctlext/Disposal"] = frame.control.disposal;
    }
    return items;
}

MetadataItems ItemsOf(const GifFile& file) {
    const GifScreen& screen = file.Screen();
    MetadataItems items;
    items[L"/logscrdesc/Width"] = screen.width;
    items[L"/logscrdesc/Height"] = screen.height;
    items[L"/logscrdesc/PixelAspectRatio"] = screen.pixelAspectRatio;
    items[L"/logscrdesc/GlobalColorTableFlag"] = !screen.globalPalette.empty();
    items[L"/logscrdesc/BackgroundColorIndex"] = screen.backgroundIndex;
    if (const auto& application = file.Application()) {
        items[L"/appext/application"] =
            std::vector<std::uint8_t>(application->name.begin(), application->name.end());
        items[L"/appext/data"] = application->data;
    }
    return items;
}

class GifFrame final : public SourceObject<IWICBitmapFrameDecode> {
public:
    GifFrame(std::shared_ptr<const GifFile> file, UINT index)
        : m_file(std::move(file))
        , m_index(index) {}

    // IWICBitmapFrameDecode
    HRESULT GetMetadataQueryReader(IWICMetadataQueryReader** reader) override {
        if (reader == nullptr) {
            return E_INVALIDARG;
        }
        return com::Wall([&] { return MakeQueryReader(ItemsOf(Entry()), reader); });
    }

    // IPicture
    HRESULT Shape(PictureShape& shape) const override {
        shape = {Entry().width, Entry().height, GUID_WICPixelFormat8bppIndexed};
        return S_OK;
    }

    // A pixel is opaque or nothing, so it is premultiplied as it stands.
    HRESULT Render(const Rendering& rendering) override {
        const bool asItIs =
            rendering.width == Entry().width && rendering.height == Entry().height &&
            rendering.turn.IsNone() && rendering.stride % sizeof(WICColor) == 0 &&
            reinterpret_cast<std::uintptr_t>(rendering.bits) % sizeof(WICColor) == 0 &&
            BitsPerPixel(rendering.format) == 32;
        if (asItIs) {
            return Decode(reinterpret_cast<WICColor*>(rendering.bits), rendering.stride);
        }
        return RenderOtherwise(rendering);
    }

    HRESULT Palette(IWICPalette&) override { return WINCODEC_ERR_PALETTEUNAVAILABLE; }

private:
    void* Find(REFIID iid) override {
        return iid == IID_IWICBitmapSource ? static_cast<IWICBitmapSource*>(this)
                                           : com::Among(iid, IID_IWICBitmapFrameDecode,
                                                        static_cast<IWICBitmapFrameDecode*>(this));
    }

    const GifFrameEntry& Entry() const { return m_file->Frames()[m_index]; }

    HRESULT Decode(WICColor* pixels, std::size_t stride) const {
        return m_file->Decode(m_index, pixels, stride) ? S_OK : WINCODEC_ERR_BADIMAGE;
    }

    HRESULT RenderOtherwise(const Rendering& rendering) const {
        const PictureShape shape{Entry().width, Entry().height};
        const std::uint64_t pixels = std::uint64_t{shape.width} * shape.height;
        if (pixels == 0 || pixels > MaxSurfacePixels) {
            return WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
        }
        const auto whole = std::make_unique_for_overwrite<WICColor[]>(pixels);
        const HRESULT decoded = Decode(whole.get(), std::size_t{shape.width} * sizeof(WICColor));
        return FAILED(decoded) ? decoded
                               : RenderMemory(reinterpret_cast<const BYTE*>(whole.get()), shape,
                                              {PixelLayout::Bgra, true}, rendering);
    }

    std::shared_ptr<const GifFile> m_file;
    UINT m_index;
};

class GifDecoder final : public com::Object<IWICBitmapDecoder> {
public:
    explicit GifDecoder(std::shared_ptr<const GifFile> file)
        : m_file(std::move(file)) {}

    // IWICBitmapDecoder
    HRESULT CopyPalette(IWICPalette* palette) override {
        if (palette == nullptr) {
            return E_INVALIDARG;
        }
        return com::Wall([&] {
            std::vector<WICColor> colours = m_file->Screen().globalPalette;
            return colours.empty() ? WINCODEC_ERR_PALETTEUNAVAILABLE
                                   : palette->InitializeCustom(colours.data(),
                                                               static_cast<UINT>(colours.size()));
        });
    }

    HRESULT GetMetadataQueryReader(IWICMetadataQueryReader** reader) override {
        if (reader == nullptr) {
            return E_INVALIDARG;
        }
        return com::Wall([&] { return MakeQueryReader(ItemsOf(*m_file), reader); });
    }

    HRESULT GetFrameCount(UINT* count) override {
        if (count == nullptr) {
            return E_INVALIDARG;
        }
        *count = static_cast<UINT>(m_file->Frames().size());
        return S_OK;
    }

    HRESULT GetFrame(UINT index, IWICBitmapFrameDecode** frame) override {
        return index < m_file->Frames().size() ? com::Make<GifFrame>(frame, m_file, index)
                                               : WINCODEC_ERR_FRAMEMISSING;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IWICBitmapDecoder, static_cast<IWICBitmapDecoder*>(this));
    }

    std::shared_ptr<const GifFile> m_file;
};

} // namespace

HRESULT MakeGifDecoder(std::shared_ptr<InputFile> file, IWICBitmapDecoder** decoder) {
    const std::shared_ptr<const GifFile> opened = GifFile::Open(std::move(file));
    return opened ? com::Make<GifDecoder>(decoder, opened) : WINCODEC_ERR_BADIMAGE;
}

} // namespace wic
