#include "zanthe/images/WICImageLoader.h"

#include <stdexcept>
#include <utility>

#include <boost/make_shared.hpp>

#include "platform/win32/PathFile.h"
#include "zanthe/images/WICImageHelper.h"
#include "zanthe/images/WICImageReader.h"
#include "zanthe/images/WICOrientation.h"

namespace Zanthe {

namespace {

// The frame scaled to the capped size, where it is larger than that and a scaler can be made; else
// the frame.
com::ComPtr<IWICBitmapSource> CappedSource(IWICImagingFactory& factory,
                                           IWICBitmapFrameDecode& frame, int maxDimension) {
    com::ComPtr<IWICBitmapSource> asItIs(&frame);
    UINT fullWidth = 0;
    UINT fullHeight = 0;
    if (FAILED(frame.GetSize(&fullWidth, &fullHeight))) {
        return asItIs;
    }
    auto width = static_cast<int>(fullWidth);
    auto height = static_cast<int>(fullHeight);
    WICImageHelper::GetCappedImageSize(width, height, maxDimension);
    if (static_cast<UINT>(width) == fullWidth && static_cast<UINT>(height) == fullHeight) {
        return asItIs;
    }
    com::ComPtr<IWICBitmapScaler> scaler;
    if (FAILED(factory.CreateBitmapScaler(scaler.Put())) ||
        FAILED(scaler->Initialize(&frame, static_cast<UINT>(width), static_cast<UINT>(height),
                                  WICBitmapInterpolationModeCubic))) {
        return asItIs;
    }
    return com::ComPtr<IWICBitmapSource>(scaler.Get());
}

// The frame within the capped size, as 32-bit premultiplied BGRA.
HRESULT CappedAndPremultiplied(IWICImagingFactory& factory, IWICBitmapFrameDecode& frame,
                               int maxDimension, com::ComPtr<IWICBitmapSource>& source) {
    com::ComPtr<IWICFormatConverter> converter;
    HRESULT result = factory.CreateFormatConverter(converter.Put());
    if (SUCCEEDED(result)) {
        const com::ComPtr<IWICBitmapSource> capped = CappedSource(factory, frame, maxDimension);
        result = converter->Initialize(capped.Get(), GUID_WICPixelFormat32bppPBGRA,
                                       WICBitmapDitherTypeNone, nullptr, 0.0,
                                       WICBitmapPaletteTypeCustom);
    }
    if (SUCCEEDED(result)) {
        source = com::ComPtr<IWICBitmapSource>(converter.Get());
    }
    return result;
}

} // namespace

WICImageLoader::WICImageLoader(const CStringW& path, int maxDimension)
    : WICImageLoader(path, maxDimension, WithoutReader()) {
    OpenReader(boost::make_shared<WICImageReader>(path));
}

WICImageLoader::WICImageLoader(const CStringW& path, int maxDimension, WithoutReader)
    : m_path(path)
    , m_maxDimension(maxDimension) {}

WICImageLoader::~WICImageLoader() = default;

void WICImageLoader::OpenReader(boost::shared_ptr<WICImageReader> reader) {
    if (reader) {
        reader->Open();
    }
    if (!reader || !reader->IsOpen()) {
        throw std::runtime_error(PathFileExistsW(m_path.c_str()) != FALSE
                                     ? "Can't create WICImagerReader"
                                     : "WICImageLoader: Couldn't open filename");
    }
    SetReader(std::move(reader));
}

void WICImageLoader::SetReader(boost::shared_ptr<WICImageReader> reader) {
    m_reader = std::move(reader);
}

void WICImageLoader::SetBitmap(boost::shared_ptr<Bitmap> bitmap) {
    m_bitmap = std::move(bitmap);
}

void WICImageLoader::GetSize(int& width, int& height) const {
    m_reader->GetSize(width, height);
    WICImageHelper::GetCappedImageSize(width, height, m_maxDimension);
}

int WICImageLoader::GetWidth() const {
    if (!m_reader) {
        throw std::runtime_error("WICImageLoader: Can't GetWidth if _WICImageReader is nullptr");
    }
    int width = 0;
    int height = 0;
    GetSize(width, height);
    return width;
}

int WICImageLoader::GetHeight() const {
    if (!m_reader) {
        throw std::runtime_error("WICImageLoader: Can't GetHeight if _WICImageReader is nullptr");
    }
    int width = 0;
    int height = 0;
    GetSize(width, height);
    return height;
}

void WICImageLoader::Load(double time, int, int) {
    static_cast<void>(LoadFrameAtTime(time));
    if (!m_bitmap) {
        throw std::runtime_error("WICImageLoader: Couldn't load a bitmap");
    }
}

bool WICImageLoader::IsVectorResizable() const {
    return false;
}

void WICImageLoader::Resize(int, int) {}

boost::shared_ptr<Bitmap> WICImageLoader::GetBitmap() {
    return m_bitmap;
}

HRESULT WICImageLoader::LoadFrameAtIndex(int index) {
    return DecodeFrame(index);
}

HRESULT WICImageLoader::LoadFrameAtTime(double seconds) {
    return m_reader ? LoadFrameAtIndex(m_reader->frameAtTime(seconds)) : E_FAIL;
}

HRESULT WICImageLoader::DecodeFrame(int index) {
    if (!m_reader || !m_reader->IsOpen()) {
        return E_FAIL;
    }
    IWICImagingFactory& factory = *m_reader->Factory();
    com::ComPtr<IWICBitmapFrameDecode> frame;
    WICPixelFormatGUID format{};
    HRESULT result = m_reader->Decoder()->GetFrame(static_cast<UINT>(index), frame.Put());
    if (SUCCEEDED(result)) {
        result = frame->GetPixelFormat(&format);
    }
    if (FAILED(result)) {
        return result;
    }
    com::ComPtr<IWICBitmapSource> source(frame.Get());
    // What needs no conversion is not capped either. Hosts know it so.
    if (format != GUID_WICPixelFormat32bppPBGRA) {
        result = CappedAndPremultiplied(factory, *frame, m_maxDimension, source);
        if (FAILED(result)) {
            return result;
        }
    }
    SetBitmap(WICImageHelper::CreateBitmapFromWICBitmapSource(
        OrientedSource(factory, *frame, source.Get()).Get()));
    return m_bitmap ? S_OK : E_FAIL;
}

} // namespace Zanthe
