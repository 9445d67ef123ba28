#include "zanthe/images/WICAnimatedGIFLoader.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include <boost/make_shared.hpp>

#include "platform/wic/Direct2D.h"
#include "platform/wic/WinCodec.h"
#include "zanthe/images/WICAnimatedGIFReader.h"
#include "zanthe/images/WICImageHelper.h"

namespace Zanthe {

namespace {

constexpr int MaxDecodingDimension = 0x1000;
constexpr D2D1_PIXEL_FORMAT SurfaceFormat = {DXGI_FORMAT_B8G8R8A8_UNORM,
                                             D2D1_ALPHA_MODE_PREMULTIPLIED};

// What a frame asks to be done with it before the next one is drawn.
enum Disposal : std::uint32_t {
    Unspecified = 0,
    Keep = 1,
    Clear = 2,
    RestorePrevious = 3,
    AlsoKeep = 4,
    FromTheStart = 5,
};

D2D1_COLOR_F ColourOf(const WICAnimatedGIFReader::Colour& colour) {
    return {colour.red, colour.green, colour.blue, colour.alpha};
}

D2D1_RECT_F RectangleOf(const WICAnimatedGIFReader::frameInfo& frame) {
    return {static_cast<FLOAT>(frame.left), static_cast<FLOAT>(frame.top),
            static_cast<FLOAT>(frame.right), static_cast<FLOAT>(frame.bottom)};
}

D2D1_RECT_F Whole(UINT width, UINT height) {
    return {0.0F, 0.0F, static_cast<FLOAT>(width), static_cast<FLOAT>(height)};
}

} // namespace

WICAnimatedGIFLoader::WICAnimatedGIFLoader(const CStringW& path)
    : WICImageLoader(path, MaxDecodingDimension, WithoutReader())
    , m_reader(boost::make_shared<WICAnimatedGIFReader>(path)) {
    m_reader->Open();
    if (!m_reader->IsOpen()) {
        throw std::runtime_error("Can't create WICAnimatedGIFReader");
    }
    SetReader(m_reader);
    HRESULT result = D2D1CreateFactory(D2D1_FACTORY_TYPE_SINGLE_THREADED, m_factory.Put());
    if (SUCCEEDED(result)) {
        result = SUCCEEDED(CreateSurfaces()) ? S_OK : E_FAIL;
    }
    m_initialized = result != E_FAIL;
}

WICAnimatedGIFLoader::~WICAnimatedGIFLoader() = default;

HRESULT WICAnimatedGIFLoader::CreateSurfaces() {
    const UINT width = m_reader->ScreenWidth();
    const UINT height = m_reader->ScreenHeight();
    if (width == 0 || height == 0) {
        return S_OK;
    }
    HRESULT result = m_reader->Factory()->CreateBitmap(width, height, GUID_WICPixelFormat32bppPBGRA,
                                                       WICBitmapCacheOnLoad, m_target.Put());
    if (SUCCEEDED(result)) {
        const D2D1_RENDER_TARGET_PROPERTIES properties = {D2D1_RENDER_TARGET_TYPE_DEFAULT,
                                                          SurfaceFormat,
                                                          0.0F,
                                                          0.0F,
                                                          D2D1_RENDER_TARGET_USAGE_NONE,
                                                          D2D1_FEATURE_LEVEL_DEFAULT};
        result = m_factory->CreateWicBitmapRenderTarget(m_target.Get(), &properties,
                                                        m_targetRenderer.Put());
    }
    if (SUCCEEDED(result)) {
        const D2D1_SIZE_F size = {static_cast<FLOAT>(width), static_cast<FLOAT>(height)};
        result = m_targetRenderer->CreateCompatibleRenderTarget(
            &size, nullptr, nullptr, D2D1_COMPATIBLE_RENDER_TARGET_OPTIONS_NONE, m_composite.Put());
    }
    return result;
}

int WICAnimatedGIFLoader::Clamped(int index) const {
    const int last = static_cast<int>(m_reader->Frames().size()) - 1;
    return std::max(0, std::min(index, last));
}

// A frame without a disposal is taken for one that the picture can be rebuilt behind, whatever the
// composite shows: that is how it is settled.
int WICAnimatedGIFLoader::FirstToDraw(int index) const {
    if (index < 1) {
        return index;
    }
    if (index == m_currentFrame) {
        return index + 1;
    }
    int before = index - 1;
    while (before >= 0 && before != m_currentFrame &&
           m_reader->Frames()[static_cast<std::size_t>(before)]->disposal != Unspecified) {
        --before;
    }
    return before + 1;
}

HRESULT WICAnimatedGIFLoader::CompositeUpTo(int index) {
    const int last = Clamped(index);
    if (m_reader->Frames().empty() || !m_composite) {
        return E_FAIL;
    }
    for (int i = FirstToDraw(last); i <= last; ++i) {
        if (FAILED(Dispose(i - 1)) || FAILED(DrawFrame(i))) {
            return E_FAIL;
        }
        m_currentFrame = i;
    }
    return S_OK;
}

// Before the first frame, index -1, the first one's own disposal is what counts.
HRESULT WICAnimatedGIFLoader::Dispose(int index) {
    const std::uint32_t disposal =
        m_reader->Frames()[static_cast<std::size_t>(std::max(index, 0))]->disposal;
    switch (disposal) {
    case Unspecified:
    case Keep:
    case AlsoKeep:
        return S_OK;
    case Clear:
        return ClearFrame(index);
    case RestorePrevious:
        return RestoreSaved();
    case FromTheStart:
        // The first frame asking for itself before it is there would never end.
        return index < 0 ? E_FAIL : StartAgain();
    default:
        return index < 0 ? ClearFrame(index) : S_OK;
    }
}

HRESULT WICAnimatedGIFLoader::ClearFrame(int index) {
    const D2D1_COLOR_F background = ColourOf(m_reader->Background());
    const D2D1_RECT_F rectangle =
        RectangleOf(*m_reader->Frames()[static_cast<std::size_t>(std::max(index, 0))]);
    m_composite->BeginDraw();
    m_composite->PushAxisAlignedClip(&rectangle, D2D1_ANTIALIAS_MODE_ALIASED);
    m_composite->Clear(&background);
    m_composite->PopAxisAlignedClip();
    return m_composite->EndDraw();
}

HRESULT WICAnimatedGIFLoader::RestoreSaved() {
    com::ComPtr<ID2D1Bitmap> pixels;
    if (!m_saved || FAILED(m_composite->GetBitmap(pixels.Put()))) {
        return E_FAIL;
    }
    return pixels->CopyFromBitmap(nullptr, m_saved.Get(), nullptr);
}

HRESULT WICAnimatedGIFLoader::StartAgain() {
    HRESULT result = Dispose(-1);
    if (SUCCEEDED(result)) {
        result = DrawFrame(0);
    }
    if (SUCCEEDED(result)) {
        m_currentFrame = 0;
    }
    return result;
}

HRESULT WICAnimatedGIFLoader::DrawFrame(int index) {
    const auto& frame = *m_reader->Frames()[static_cast<std::size_t>(index)];
    HRESULT result = DecodeRaw(index);
    if (SUCCEEDED(result) && frame.disposal == RestorePrevious) {
        result = SaveComposite();
    }
    if (FAILED(result)) {
        return result;
    }
    const D2D1_COLOR_F background = ColourOf(m_reader->Background());
    const D2D1_RECT_F rectangle = RectangleOf(frame);
    m_composite->BeginDraw();
    if (index == 0) {
        m_composite->Clear(&background);
    }
    m_composite->DrawBitmap(m_raw.Get(), &rectangle, 1.0F, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR,
                            nullptr);
    return m_composite->EndDraw();
}

HRESULT WICAnimatedGIFLoader::DecodeRaw(int index) {
    m_raw.Reset();
    com::ComPtr<IWICBitmapFrameDecode> frame;
    com::ComPtr<IWICFormatConverter> converter;
    HRESULT result = m_reader->Decoder()->GetFrame(static_cast<UINT>(index), frame.Put());
    if (SUCCEEDED(result)) {
        result = m_reader->Factory()->CreateFormatConverter(converter.Put());
    }
    if (SUCCEEDED(result)) {
        result = converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppPBGRA,
                                       WICBitmapDitherTypeNone, nullptr, 0.0,
                                       WICBitmapPaletteTypeCustom);
    }
    return SUCCEEDED(result)
               ? m_composite->CreateBitmapFromWicBitmap(converter.Get(), nullptr, m_raw.Put())
               : result;
}

HRESULT WICAnimatedGIFLoader::SaveComposite() {
    HRESULT result = S_OK;
    if (!m_saved) {
        D2D1_BITMAP_PROPERTIES properties{};
        properties.pixelFormat = m_composite->GetPixelFormat();
        m_composite->GetDpi(&properties.dpiX, &properties.dpiY);
        result = m_composite->CreateBitmap(m_composite->GetPixelSize(), nullptr, 0, &properties,
                                           m_saved.Put());
    }
    return SUCCEEDED(result) ? m_saved->CopyFromRenderTarget(nullptr, m_composite.Get(), nullptr)
                             : result;
}

HRESULT WICAnimatedGIFLoader::ClearComposite() {
    if (!m_composite) {
        return E_FAIL;
    }
    const D2D1_COLOR_F background = ColourOf(m_reader->Background());
    m_composite->BeginDraw();
    m_composite->Clear(&background);
    return m_composite->EndDraw();
}

HRESULT WICAnimatedGIFLoader::PreRender() {
    UINT width = 0;
    UINT height = 0;
    if (!m_target || FAILED(m_target->GetSize(&width, &height)) || width == 0 || height == 0) {
        return S_OK;
    }
    com::ComPtr<ID2D1Bitmap> pixels;
    const HRESULT result = m_composite->GetBitmap(pixels.Put());
    if (FAILED(result)) {
        return result;
    }
    const D2D1_COLOR_F background = ColourOf(m_reader->Background());
    const D2D1_RECT_F whole = Whole(width, height);
    m_targetRenderer->BeginDraw();
    m_targetRenderer->Clear(&background);
    m_targetRenderer->DrawBitmap(pixels.Get(), &whole, 1.0F, D2D1_BITMAP_INTERPOLATION_MODE_LINEAR,
                                 nullptr);
    return m_targetRenderer->EndDraw();
}

template <typename Sink>
HRESULT WICAnimatedGIFLoader::HandOver(const Sink& sink) {
    WICPixelFormatGUID format{};
    if (!m_target || FAILED(m_target->GetPixelFormat(&format)) ||
        format != GUID_WICPixelFormat32bppPBGRA) {
        return E_FAIL;
    }
    com::ComPtr<IWICFormatConverter> converter;
    HRESULT result = m_reader->Factory()->CreateFormatConverter(converter.Put());
    if (SUCCEEDED(result)) {
        result = converter->Initialize(m_target.Get(), format, WICBitmapDitherTypeNone, nullptr,
                                       0.0, WICBitmapPaletteTypeCustom);
    }
    return SUCCEEDED(result) ? sink(converter.Get()) : result;
}

HRESULT WICAnimatedGIFLoader::ShowAsBitmap() {
    if (FAILED(PreRender())) {
        return E_FAIL;
    }
    return HandOver([this](IWICBitmapSource* source) {
        boost::shared_ptr<Bitmap> bitmap = WICImageHelper::CreateBitmapFromWICBitmapSource(source);
        if (!bitmap) {
            return E_FAIL;
        }
        SetBitmap(std::move(bitmap));
        return S_OK;
    });
}

HRESULT WICAnimatedGIFLoader::LoadFrameAtTime(double seconds) {
    const HRESULT result = CompositeUpTo(m_reader->frameAtTime(seconds));
    return SUCCEEDED(result) ? ShowAsBitmap() : result;
}

HRESULT WICAnimatedGIFLoader::LoadFrameAtIndex(int index) {
    if (FAILED(ClearComposite()) || FAILED(CompositeUpTo(index))) {
        return E_FAIL;
    }
    return ShowAsBitmap();
}

boost::shared_ptr<Bitmap> WICAnimatedGIFLoader::GetFrameAtTime(double seconds) {
    static_cast<void>(LoadFrameAtTime(seconds));
    return GetBitmap();
}

boost::shared_ptr<Bitmap> WICAnimatedGIFLoader::GetFrameAtIndex(int index) {
    static_cast<void>(LoadFrameAtIndex(index));
    return GetBitmap();
}

void WICAnimatedGIFLoader::GetFrameAtTimeIntoBuffer(double seconds, unsigned char* buffer) {
    if (FAILED(CompositeUpTo(m_reader->frameAtTime(seconds)))) {
        throw std::runtime_error("WICAnimatedGIFLoader: Error compositing frame");
    }
    HRESULT result = PreRender();
    if (SUCCEEDED(result)) {
        result = HandOver([&](IWICBitmapSource* source) {
            const auto width = static_cast<UINT>(GetWidth());
            const auto height = static_cast<UINT>(GetHeight());
            if (width == m_reader->ScreenWidth() && height == m_reader->ScreenHeight()) {
                return WICImageHelper::CopyWICBitmapSourceToBuffer(source, buffer);
            }
            // The caller's buffer is of the capped size.
            com::ComPtr<IWICBitmapScaler> scaler;
            HRESULT scaled = m_reader->Factory()->CreateBitmapScaler(scaler.Put());
            if (SUCCEEDED(scaled)) {
                scaled = scaler->Initialize(source, width, height, WICBitmapInterpolationModeCubic);
            }
            return SUCCEEDED(scaled)
                       ? WICImageHelper::CopyWICBitmapSourceToBuffer(scaler.Get(), buffer)
                       : scaled;
        });
    }
    if (FAILED(result)) {
        throw std::runtime_error("WICAnimatedGIFLoader: Error PreRendering frame");
    }
}

Gdiplus::Color WICAnimatedGIFLoader::GetGdiplusBackgroundColor() {
    const auto channel = [](float value) {
        return static_cast<std::uint8_t>(
            std::clamp(std::lround(static_cast<double>(value) * 255.0), 0L, 255L));
    };
    const WICAnimatedGIFReader::Colour& colour = m_reader->Background();
    return {channel(colour.alpha), channel(colour.red), channel(colour.green),
            channel(colour.blue)};
}

} // namespace Zanthe
