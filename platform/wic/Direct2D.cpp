#include "platform/wic/Direct2D.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/com/Object.h"
#include "platform/wic/CairoSurface.h"
#include "platform/wic/Rendering.h"
#include "platform/wic/Stages.h"

namespace {

constexpr IID IID_ID2D1Factory = {
    0x06152247, 0x6F50, 0x465A, {0x92, 0x45, 0x11, 0x8B, 0xFD, 0x3B, 0x60, 0x07}};
constexpr IID IID_ID2D1RenderTarget = {
    0x2CD90694, 0x12E2, 0x11DC, {0x9F, 0xED, 0x00, 0x11, 0x43, 0xA0, 0x55, 0xF9}};
constexpr IID IID_ID2D1BitmapRenderTarget = {
    0x2CD90695, 0x12E2, 0x11DC, {0x9F, 0xED, 0x00, 0x11, 0x43, 0xA0, 0x55, 0xF9}};
constexpr IID IID_ID2D1Bitmap = {
    0xA2296057, 0xEA42, 0x4099, {0x98, 0x3B, 0x53, 0x9F, 0xB6, 0x50, 0x54, 0x26}};

constexpr FLOAT Dpi = 96;
constexpr D2D1_PIXEL_FORMAT PixelFormat = {DXGI_FORMAT_B8G8R8A8_UNORM,
                                           D2D1_ALPHA_MODE_PREMULTIPLIED};

bool IsOurFormat(const D2D1_PIXEL_FORMAT& format) {
    return format.format == PixelFormat.format && format.alphaMode == PixelFormat.alphaMode;
}

// Pixels that are drawn on and drawn from. Shared: a target's bitmap is the target's own.
class Surface {
public:
    // Null where cairo takes no surface of this size.
    static std::shared_ptr<Surface> Create(UINT32 width, UINT32 height) {
        if (std::uint64_t{width} * height > wic::MaxSurfacePixels) {
            return nullptr;
        }
        return Checked(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(width),
                                                  static_cast<int>(height)),
                       {});
    }

    // Over the rows of `bitmap`, which it keeps.
    static std::shared_ptr<Surface> Over(com::ComPtr<IWICBitmap> bitmap, UINT32 width,
                                         UINT32 height) {
        // Ahead of the call below: it takes the bitmap away, and in which order is the compiler's.
        BYTE* const bits = wic::BitsOf(bitmap.Get());
        return Checked(cairo_image_surface_create_for_data(
                           bits, CAIRO_FORMAT_ARGB32, static_cast<int>(width),
                           static_cast<int>(height), static_cast<int>(width * 4)),
                       std::move(bitmap));
    }

    cairo_surface_t* Cairo() const { return m_surface.get(); }

    D2D1_SIZE_U Size() const {
        return {static_cast<UINT32>(cairo_image_surface_get_width(Cairo())),
                static_cast<UINT32>(cairo_image_surface_get_height(Cairo()))};
    }

    std::size_t Stride() const {
        return static_cast<std::size_t>(cairo_image_surface_get_stride(Cairo()));
    }

    // The rows, to be written by somebody else than cairo until Changed is called.
    BYTE* Rows() const {
        cairo_surface_flush(Cairo());
        return cairo_image_surface_get_data(Cairo());
    }

    void Changed() const { cairo_surface_mark_dirty(Cairo()); }

    HRESULT CopyFrom(const Surface& other) const {
        const D2D1_SIZE_U size = Size();
        if (other.Size().width != size.width || other.Size().height != size.height) {
            return E_INVALIDARG;
        }
        const BYTE* from = other.Rows();
        BYTE* to = Rows();
        for (UINT32 y = 0; y < size.height; ++y) {
            std::memcpy(to + y * Stride(), from + y * other.Stride(), std::size_t{size.width} * 4);
        }
        Changed();
        return S_OK;
    }

private:
    Surface(wic::CairoSurfacePtr surface, com::ComPtr<IWICBitmap> bitmap)
        : m_bitmap(std::move(bitmap))
        , m_surface(std::move(surface)) {}

    static std::shared_ptr<Surface> Checked(cairo_surface_t* made, com::ComPtr<IWICBitmap> bitmap) {
        wic::CairoSurfacePtr surface(made);
        if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) {
            return nullptr;
        }
        return std::shared_ptr<Surface>(new Surface(std::move(surface), std::move(bitmap)));
    }

    // In this order: the surface goes before the rows that it stands on.
    com::ComPtr<IWICBitmap> m_bitmap;
    wic::CairoSurfacePtr m_surface;
};

class Bitmap final : public com::Object<ID2D1Bitmap> {
public:
    explicit Bitmap(std::shared_ptr<Surface> surface)
        : m_surface(std::move(surface)) {}

    const Surface& Pixels() const { return *m_surface; }

    // ID2D1Bitmap
    D2D1_SIZE_F GetSize() const override {
        const D2D1_SIZE_U size = m_surface->Size();
        return {static_cast<FLOAT>(size.width), static_cast<FLOAT>(size.height)};
    }

    D2D1_SIZE_U GetPixelSize() const override { return m_surface->Size(); }

    D2D1_PIXEL_FORMAT GetPixelFormat() const override { return PixelFormat; }

    void GetDpi(FLOAT* dpiX, FLOAT* dpiY) const override { *dpiX = *dpiY = Dpi; }

    HRESULT CopyFromBitmap(const D2D1_POINT_2U* destPoint, ID2D1Bitmap* bitmap,
                           const D2D1_RECT_U* srcRect) override {
        const auto* const from = dynamic_cast<const Bitmap*>(bitmap);
        if (from == nullptr || destPoint != nullptr || srcRect != nullptr) {
            return E_INVALIDARG;
        }
        return m_surface->CopyFrom(from->Pixels());
    }

    HRESULT CopyFromRenderTarget(const D2D1_POINT_2U* destPoint, ID2D1RenderTarget* renderTarget,
                                 const D2D1_RECT_U* srcRect) override;

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_ID2D1Bitmap, static_cast<ID2D1Bitmap*>(this));
    }

    std::shared_ptr<Surface> m_surface;
};

HRESULT MakeBitmap(std::shared_ptr<Surface> surface, ID2D1Bitmap** bitmap) {
    return surface ? com::Make<Bitmap>(bitmap, std::move(surface))
                   : D2DERR_MAX_TEXTURE_SIZE_EXCEEDED;
}

class RenderTarget final : public com::Object<ID2D1BitmapRenderTarget> {
public:
    explicit RenderTarget(std::shared_ptr<Surface> surface)
        : m_surface(std::move(surface)) {}

    const Surface& Pixels() const { return *m_surface; }

    // ID2D1RenderTarget
    HRESULT CreateBitmap(D2D1_SIZE_U size, const void* srcData, UINT32 pitch,
                         const D2D1_BITMAP_PROPERTIES* properties, ID2D1Bitmap** bitmap) override {
        if (properties == nullptr || bitmap == nullptr || size.width == 0 || size.height == 0 ||
            (srcData != nullptr && pitch < std::uint64_t{size.width} * 4)) {
            return E_INVALIDARG;
        }
        if (!IsOurFormat(properties->pixelFormat)) {
            return D2DERR_UNSUPPORTED_PIXEL_FORMAT;
        }
        return com::Wall([&] {
            const std::shared_ptr<Surface> surface = Surface::Create(size.width, size.height);
            if (surface && srcData != nullptr) {
                CopyRows(static_cast<const BYTE*>(srcData), pitch, *surface);
            }
            return MakeBitmap(surface, bitmap);
        });
    }

    HRESULT CreateBitmapFromWicBitmap(IWICBitmapSource* source,
                                      const D2D1_BITMAP_PROPERTIES* properties,
                                      ID2D1Bitmap** bitmap) override {
        if (source == nullptr || bitmap == nullptr || properties != nullptr) {
            return E_INVALIDARG;
        }
        return com::Wall([&] { return CopySource(*source, bitmap); });
    }

    HRESULT CreateCompatibleRenderTarget(const D2D1_SIZE_F* desiredSize,
                                         const D2D1_SIZE_U* desiredPixelSize,
                                         const D2D1_PIXEL_FORMAT* desiredFormat,
                                         D2D1_COMPATIBLE_RENDER_TARGET_OPTIONS,
                                         ID2D1BitmapRenderTarget** renderTarget) override {
        if (desiredSize == nullptr || desiredPixelSize != nullptr || desiredFormat != nullptr ||
            !(desiredSize->width >= 1 && desiredSize->height >= 1)) {
            return E_INVALIDARG;
        }
        return com::Wall([&] {
            std::shared_ptr<Surface> surface = Surface::Create(
                static_cast<UINT32>(desiredSize->width), static_cast<UINT32>(desiredSize->height));
            return surface ? com::Make<RenderTarget>(renderTarget, std::move(surface))
                           : D2DERR_MAX_TEXTURE_SIZE_EXCEEDED;
        });
    }

    D2D1_SIZE_F GetSize() const override {
        const D2D1_SIZE_U size = m_surface->Size();
        return {static_cast<FLOAT>(size.width), static_cast<FLOAT>(size.height)};
    }

    D2D1_SIZE_U GetPixelSize() const override { return m_surface->Size(); }

    D2D1_PIXEL_FORMAT GetPixelFormat() const override { return PixelFormat; }

    void GetDpi(FLOAT* dpiX, FLOAT* dpiY) const override { *dpiX = *dpiY = Dpi; }

    void BeginDraw() override {
        m_failure = S_OK;
        m_clips = 0;
        m_context.reset(cairo_create(m_surface->Cairo()));
    }

    HRESULT EndDraw(UINT64*, UINT64*) override {
        if (!m_context) {
            return D2DERR_WRONG_STATE;
        }
        if (m_clips != 0) {
            Fail(D2DERR_PUSH_POP_UNBALANCED);
        }
        if (cairo_status(m_context.get()) != CAIRO_STATUS_SUCCESS) {
            Fail(E_FAIL);
        }
        m_context.reset();
        return m_failure;
    }

    void Clear(const D2D1_COLOR_F* clearColor) override {
        if (!IsDrawing()) {
            return;
        }
        const D2D1_COLOR_F colour = clearColor != nullptr ? *clearColor : D2D1_COLOR_F{};
        cairo_save(m_context.get());
        cairo_set_operator(m_context.get(), CAIRO_OPERATOR_SOURCE);
        cairo_set_source_rgba(m_context.get(), colour.r, colour.g, colour.b, colour.a);
        cairo_paint(m_context.get());
        cairo_restore(m_context.get());
    }

    void DrawBitmap(ID2D1Bitmap* bitmap, const D2D1_RECT_F* destinationRectangle, FLOAT opacity,
                    D2D1_BITMAP_INTERPOLATION_MODE, const D2D1_RECT_F* sourceRectangle) override {
        const auto* const from = dynamic_cast<const Bitmap*>(bitmap);
        if (!IsDrawing()) {
            return;
        }
        if (from == nullptr || destinationRectangle == nullptr || sourceRectangle != nullptr) {
            Fail(E_INVALIDARG);
            return;
        }
        Draw(from->Pixels(), *destinationRectangle, opacity);
    }

    void PushAxisAlignedClip(const D2D1_RECT_F* clipRect, D2D1_ANTIALIAS_MODE) override {
        if (!IsDrawing()) {
            return;
        }
        if (clipRect == nullptr) {
            Fail(E_INVALIDARG);
            return;
        }
        ++m_clips;
        cairo_save(m_context.get());
        cairo_set_antialias(m_context.get(), CAIRO_ANTIALIAS_NONE);
        AddRectangle(*clipRect);
        cairo_clip(m_context.get());
    }

    void PopAxisAlignedClip() override {
        if (!IsDrawing()) {
            return;
        }
        if (m_clips == 0) {
            Fail(D2DERR_PUSH_POP_UNBALANCED);
            return;
        }
        --m_clips;
        cairo_restore(m_context.get());
    }

    // ID2D1BitmapRenderTarget
    HRESULT GetBitmap(ID2D1Bitmap** bitmap) override {
        return com::Make<Bitmap>(bitmap, m_surface);
    }

private:
    void* Find(REFIID iid) override {
        return iid == IID_ID2D1RenderTarget
                   ? static_cast<ID2D1RenderTarget*>(this)
                   : com::Among(iid, IID_ID2D1BitmapRenderTarget,
                                static_cast<ID2D1BitmapRenderTarget*>(this));
    }

    static void CopyRows(const BYTE* from, std::size_t pitch, const Surface& surface) {
        const D2D1_SIZE_U size = surface.Size();
        BYTE* to = surface.Rows();
        for (UINT32 y = 0; y < size.height; ++y) {
            std::memcpy(to + y * surface.Stride(), from + y * pitch, std::size_t{size.width} * 4);
        }
        surface.Changed();
    }

    static HRESULT CopySource(IWICBitmapSource& source, ID2D1Bitmap** bitmap) {
        UINT width = 0;
        UINT height = 0;
        WICPixelFormatGUID format{};
        HRESULT result = source.GetSize(&width, &height);
        if (SUCCEEDED(result)) {
            result = source.GetPixelFormat(&format);
        }
        if (FAILED(result)) {
            return result;
        }
        if (format != GUID_WICPixelFormat32bppPBGRA) {
            return D2DERR_UNSUPPORTED_PIXEL_FORMAT;
        }
        const std::shared_ptr<Surface> surface = Surface::Create(width, height);
        if (!surface) {
            return D2DERR_MAX_TEXTURE_SIZE_EXCEEDED;
        }
        result = source.CopyPixels(nullptr, static_cast<UINT>(surface->Stride()),
                                   static_cast<UINT>(surface->Stride() * height), surface->Rows());
        surface->Changed();
        return SUCCEEDED(result) ? MakeBitmap(surface, bitmap) : result;
    }

    bool IsDrawing() {
        if (!m_context) {
            m_failure = D2DERR_WRONG_STATE;
        }
        return m_context != nullptr;
    }

    // The first failure is the one that is told.
    void Fail(HRESULT failure) {
        if (SUCCEEDED(m_failure)) {
            m_failure = failure;
        }
    }

    void AddRectangle(const D2D1_RECT_F& rectangle) {
        cairo_rectangle(m_context.get(), rectangle.left, rectangle.top,
                        rectangle.right - rectangle.left, rectangle.bottom - rectangle.top);
    }

    void Draw(const Surface& from, const D2D1_RECT_F& onto, FLOAT opacity) {
        const D2D1_SIZE_U size = from.Size();
        const double across = (onto.right - onto.left) / static_cast<double>(size.width);
        const double down = (onto.bottom - onto.top) / static_cast<double>(size.height);
        if (!(across > 0 && down > 0)) {
            return; // onto nothing
        }
        cairo_t* const context = m_context.get();
        cairo_save(context);
        AddRectangle(onto);
        cairo_clip(context);
        cairo_translate(context, onto.left, onto.top);
        cairo_scale(context, across, down);
        cairo_set_source_surface(context, from.Cairo(), 0, 0);
        cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_BILINEAR);
        cairo_pattern_set_extend(cairo_get_source(context), CAIRO_EXTEND_PAD);
        cairo_paint_with_alpha(context, opacity);
        cairo_restore(context);
    }

    std::shared_ptr<Surface> m_surface;
    wic::CairoContextPtr m_context; // between BeginDraw and EndDraw
    int m_clips = 0;
    HRESULT m_failure = S_OK;
};

HRESULT Bitmap::CopyFromRenderTarget(const D2D1_POINT_2U* destPoint,
                                     ID2D1RenderTarget* renderTarget, const D2D1_RECT_U* srcRect) {
    const auto* const from = dynamic_cast<const RenderTarget*>(renderTarget);
    if (from == nullptr || destPoint != nullptr || srcRect != nullptr) {
        return E_INVALIDARG;
    }
    return m_surface->CopyFrom(from->Pixels());
}

class Factory final : public com::Object<ID2D1Factory> {
public:
    // ID2D1Factory
    HRESULT CreateWicBitmapRenderTarget(IWICBitmap* target,
                                        const D2D1_RENDER_TARGET_PROPERTIES* properties,
                                        ID2D1RenderTarget** renderTarget) override {
        if (target == nullptr || properties == nullptr || renderTarget == nullptr ||
            wic::BitsOf(target) == nullptr) {
            return E_INVALIDARG;
        }
        if (!IsOurFormat(properties->pixelFormat)) {
            return D2DERR_UNSUPPORTED_PIXEL_FORMAT;
        }
        UINT width = 0;
        UINT height = 0;
        const HRESULT sized = target->GetSize(&width, &height);
        if (FAILED(sized)) {
            return sized;
        }
        return com::Wall([&] {
            std::shared_ptr<Surface> surface = Surface::Over(com::ComPtr(target), width, height);
            return surface ? com::Make<RenderTarget>(renderTarget, std::move(surface))
                           : D2DERR_MAX_TEXTURE_SIZE_EXCEEDED;
        });
    }

private:
    void* Find(REFIID iid) override {
        return com::Among(iid, IID_ID2D1Factory, static_cast<ID2D1Factory*>(this));
    }
};

} // namespace

HRESULT D2D1CreateFactory(D2D1_FACTORY_TYPE factoryType, ID2D1Factory** factory) {
    return factoryType == D2D1_FACTORY_TYPE_SINGLE_THREADED ? com::Make<Factory>(factory)
                                                            : E_INVALIDARG;
}
