#include "platform/wic/ImagingFactory.h"

#include "platform/com/Object.h"
#include "platform/wic/Decoders.h"
#include "platform/wic/Stages.h"

namespace wic {

namespace {

// HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)
constexpr HRESULT FileNotFound = com::ResultOf(0x80070002);

class ImagingFactory final : public com::Object<IWICImagingFactory> {
public:
    // IWICImagingFactory
    HRESULT CreateDecoderFromFilename(LPCWSTR filename, const GUID* vendor, DWORD access,
                                      WICDecodeOptions, IWICBitmapDecoder** decoder) override {
        if (filename == nullptr || decoder == nullptr || vendor != nullptr ||
            access != GENERIC_READ) {
            return E_INVALIDARG;
        }
        *decoder = nullptr;
        return com::Wall([&] {
            std::shared_ptr<InputFile> file = InputFile::Open(filename);
            return file ? MakeDecoder(std::move(file), decoder) : FileNotFound;
        });
    }

    HRESULT CreateComponentInfo(REFCLSID component, IWICComponentInfo** info) override {
        return MakePixelFormatInfo(component, info);
    }

    HRESULT CreatePalette(IWICPalette** palette) override { return MakePalette(palette); }

    HRESULT CreateFormatConverter(IWICFormatConverter** converter) override {
        return MakeFormatConverter(converter);
    }

    HRESULT CreateBitmapScaler(IWICBitmapScaler** scaler) override { return MakeScaler(scaler); }

    HRESULT CreateBitmapFlipRotator(IWICBitmapFlipRotator** rotator) override {
        return MakeFlipRotator(rotator);
    }

    HRESULT CreateBitmap(UINT width, UINT height, REFWICPixelFormatGUID format,
                         WICBitmapCreateCacheOption, IWICBitmap** bitmap) override {
        return MakeBitmap(width, height, format, bitmap);
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_IWICImagingFactory, static_cast<IWICImagingFactory*>(this));
    }
};

} // namespace

HRESULT CreateImagingFactory(REFIID iid, void** object) {
    return com::Wall([&] { return com::MakeOwned<ImagingFactory>()->QueryInterface(iid, object); });
}

} // namespace wic
