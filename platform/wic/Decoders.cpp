#include "platform/wic/Decoders.h"

#include <array>
#include <string_view>

#include "platform/wic/BmpFile.h"
#include "platform/wic/GifDecoder.h"
#include "platform/wic/MetadataItems.h"
#include "platform/wic/SourceObject.h"
#include "platform/wic/VipsFile.h"

namespace wic {

namespace {

// The one frame of a still picture's file. File: VipsFile or BmpFile.
template <typename File>
class StillFrame final : public SourceObject<IWICBitmapFrameDecode> {
public:
    explicit StillFrame(std::shared_ptr<const File> file)
        : m_file(std::move(file)) {}

    // IWICBitmapFrameDecode
    HRESULT GetMetadataQueryReader(IWICMetadataQueryReader** reader) override {
        if (reader == nullptr) {
            return E_INVALIDARG;
        }
        return com::Wall([&] { return MakeQueryReader(Items(*m_file), reader); });
    }

    // IPicture
    HRESULT Shape(PictureShape& shape) const override {
        shape = m_file->Shape();
        return S_OK;
    }

    HRESULT Render(const Rendering& rendering) override { return m_file->Render(rendering); }

    HRESULT Palette(IWICPalette&) override { return WINCODEC_ERR_PALETTEUNAVAILABLE; }

private:
    void* Find(REFIID iid) override {
        return iid == IID_IWICBitmapSource ? static_cast<IWICBitmapSource*>(this)
                                           : com::Among(iid, IID_IWICBitmapFrameDecode,
                                                        static_cast<IWICBitmapFrameDecode*>(this));
    }

    static MetadataItems Items(const VipsFile& file) {
        MetadataItems items;
        if (const auto orientation = file.Orientation()) {
            items[L"/app1/ifd/{ushort=274}"] = *orientation;
        }
        return items;
    }

    static MetadataItems Items(const BmpFile&) { return {}; }

    std::shared_ptr<const File> m_file;
};

template <typename File>
class StillDecoder final : public com::Object<IWICBitmapDecoder> {
public:
    explicit StillDecoder(std::shared_ptr<const File> file)
        : m_file(std::move(file)) {}

    // IWICBitmapDecoder
    HRESULT CopyPalette(IWICPalette*) override { return WINCODEC_ERR_PALETTEUNAVAILABLE; }

    HRESULT GetMetadataQueryReader(IWICMetadataQueryReader**) override {
        return WINCODEC_ERR_UNSUPPORTEDOPERATION;
    }

    HRESULT GetFrameCount(UINT* count) override {
        if (count == nullptr) {
            return E_INVALIDARG;
        }
        *count = 1;
        return S_OK;
    }

    HRESULT GetFrame(UINT index, IWICBitmapFrameDecode** frame) override {
        return index == 0 ? com::Make<StillFrame<File>>(frame, m_file) : WINCODEC_ERR_FRAMEMISSING;
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IWICBitmapDecoder, static_cast<IWICBitmapDecoder*>(this));
    }

    std::shared_ptr<const File> m_file;
};

template <typename File>
HRESULT MakeStillDecoder(std::shared_ptr<InputFile> file, IWICBitmapDecoder** decoder) {
    HRESULT result = S_OK;
    const std::shared_ptr<const File> opened = File::Open(std::move(file), result);
    return opened ? com::Make<StillDecoder<File>>(decoder, opened) : result;
}

} // namespace

HRESULT MakeDecoder(std::shared_ptr<InputFile> file, IWICBitmapDecoder** decoder) {
    std::array<char, 4> bytes{};
    file->ReadAt(0, bytes.data(), bytes.size());
    const std::string_view start(bytes.data(), bytes.size());
    if (start == "GIF8") {
        return MakeGifDecoder(std::move(file), decoder);
    }
    if (start.substr(0, 2) == "BM") {
        return MakeStillDecoder<BmpFile>(std::move(file), decoder);
    }
    return MakeStillDecoder<VipsFile>(std::move(file), decoder);
}

} // namespace wic
