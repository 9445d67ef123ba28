// Drawing pictures onto pictures. Stands for d2d1.h, dcommon.h and the formats of dxgiformat.h, as
// far as bitmaps are cleared, drawn and copied with them. On cairo.
//
// Everything is 32-bit premultiplied BGRA at 96 dots an inch, where a device-independent pixel is a
// pixel. A surface takes up to 32767 pixels a side and wic::MaxSurfacePixels in all.
//
// Thread-safety: none, as of a single-threaded factory.
#pragma once

#include "platform/com/Unknown.h"

struct IWICBitmap;
struct IWICBitmapSource;

using FLOAT = float;

inline constexpr HRESULT D2DERR_WRONG_STATE = com::ResultOf(0x88990001);
inline constexpr HRESULT D2DERR_PUSH_POP_UNBALANCED = com::ResultOf(0x88990016);
inline constexpr HRESULT D2DERR_UNSUPPORTED_PIXEL_FORMAT = com::ResultOf(0x88982F80);
inline constexpr HRESULT D2DERR_MAX_TEXTURE_SIZE_EXCEEDED = com::ResultOf(0x8899000F);

// NOLINTBEGIN(readability-identifier-naming): the names of the SDK
enum DXGI_FORMAT : UINT32 {
    DXGI_FORMAT_UNKNOWN = 0,
    DXGI_FORMAT_B8G8R8A8_UNORM = 87,
};

enum D2D1_ALPHA_MODE : UINT32 {
    D2D1_ALPHA_MODE_UNKNOWN = 0,
    D2D1_ALPHA_MODE_PREMULTIPLIED = 1,
};

enum D2D1_FACTORY_TYPE : UINT32 {
    D2D1_FACTORY_TYPE_SINGLE_THREADED = 0,
};

enum D2D1_RENDER_TARGET_TYPE : UINT32 {
    D2D1_RENDER_TARGET_TYPE_DEFAULT = 0,
};

enum D2D1_RENDER_TARGET_USAGE : UINT32 {
    D2D1_RENDER_TARGET_USAGE_NONE = 0,
};

enum D2D1_FEATURE_LEVEL : UINT32 {
    D2D1_FEATURE_LEVEL_DEFAULT = 0,
};

enum D2D1_COMPATIBLE_RENDER_TARGET_OPTIONS : UINT32 {
    D2D1_COMPATIBLE_RENDER_TARGET_OPTIONS_NONE = 0,
};

enum D2D1_BITMAP_INTERPOLATION_MODE : UINT32 {
    D2D1_BITMAP_INTERPOLATION_MODE_LINEAR = 1,
};

enum D2D1_ANTIALIAS_MODE : UINT32 {
    D2D1_ANTIALIAS_MODE_ALIASED = 1,
};

struct D2D1_PIXEL_FORMAT {
    DXGI_FORMAT format;
    D2D1_ALPHA_MODE alphaMode;
};

struct D2D1_RENDER_TARGET_PROPERTIES {
    D2D1_RENDER_TARGET_TYPE type;
    D2D1_PIXEL_FORMAT pixelFormat;
    FLOAT dpiX; // 0: the default
    FLOAT dpiY;
    D2D1_RENDER_TARGET_USAGE usage;
    D2D1_FEATURE_LEVEL minLevel;
};

struct D2D1_BITMAP_PROPERTIES {
    D2D1_PIXEL_FORMAT pixelFormat;
    FLOAT dpiX;
    FLOAT dpiY;
};

// Not premultiplied; 0 to 1.
struct D2D1_COLOR_F {
    FLOAT r;
    FLOAT g;
    FLOAT b;
    FLOAT a;
};

struct D2D1_SIZE_F {
    FLOAT width;
    FLOAT height;
};

struct D2D1_SIZE_U {
    UINT32 width;
    UINT32 height;
};

struct D2D1_RECT_F {
    FLOAT left;
    FLOAT top;
    FLOAT right;
    FLOAT bottom;
};

struct D2D1_POINT_2U {
    UINT32 x;
    UINT32 y;
};

struct D2D1_RECT_U {
    UINT32 left;
    UINT32 top;
    UINT32 right;
    UINT32 bottom;
};

// NOLINTEND(readability-identifier-naming)

struct ID2D1RenderTarget;

struct ID2D1Bitmap : IUnknown {
    virtual D2D1_SIZE_F GetSize() const = 0;
    virtual D2D1_SIZE_U GetPixelSize() const = 0;
    virtual D2D1_PIXEL_FORMAT GetPixelFormat() const = 0;
    virtual void GetDpi(FLOAT* dpiX, FLOAT* dpiY) const = 0;

    // Copies all pixels, at the top left corner: the point and the rectangle are null. E_INVALIDARG
    // where they are not and where the sizes differ.
    virtual HRESULT CopyFromBitmap(const D2D1_POINT_2U* destPoint, ID2D1Bitmap* bitmap,
                                   const D2D1_RECT_U* srcRect) = 0;
    virtual HRESULT CopyFromRenderTarget(const D2D1_POINT_2U* destPoint,
                                         ID2D1RenderTarget* renderTarget,
                                         const D2D1_RECT_U* srcRect) = 0;

protected:
    ~ID2D1Bitmap() = default;
};

struct ID2D1BitmapRenderTarget;

// Drawing happens between BeginDraw and EndDraw; what fails in between is told by EndDraw.
struct ID2D1RenderTarget : IUnknown {
    // A bitmap of the pixels at `srcData`, `pitch` bytes a row, or undefined ones when it is null.
    virtual HRESULT CreateBitmap(D2D1_SIZE_U size, const void* srcData, UINT32 pitch,
                                 const D2D1_BITMAP_PROPERTIES* properties,
                                 ID2D1Bitmap** bitmap) = 0;

    // A copy of the source, which is 32-bit premultiplied BGRA. `properties` is null.
    virtual HRESULT CreateBitmapFromWicBitmap(IWICBitmapSource* source,
                                              const D2D1_BITMAP_PROPERTIES* properties,
                                              ID2D1Bitmap** bitmap) = 0;

    // A surface of `desiredSize`, all transparent; the other wishes are null.
    virtual HRESULT CreateCompatibleRenderTarget(const D2D1_SIZE_F* desiredSize,
                                                 const D2D1_SIZE_U* desiredPixelSize,
                                                 const D2D1_PIXEL_FORMAT* desiredFormat,
                                                 D2D1_COMPATIBLE_RENDER_TARGET_OPTIONS options,
                                                 ID2D1BitmapRenderTarget** renderTarget) = 0;

    virtual D2D1_SIZE_F GetSize() const = 0;
    virtual D2D1_SIZE_U GetPixelSize() const = 0;
    virtual D2D1_PIXEL_FORMAT GetPixelFormat() const = 0;
    virtual void GetDpi(FLOAT* dpiX, FLOAT* dpiY) const = 0;

    virtual void BeginDraw() = 0;

    // The first failure since BeginDraw. The tags are null.
    virtual HRESULT EndDraw(UINT64* tag1 = nullptr, UINT64* tag2 = nullptr) = 0;

    // Sets every pixel within the clip; null clears to transparent.
    virtual void Clear(const D2D1_COLOR_F* clearColor) = 0;

    // Draws the bitmap over what is there, stretched onto `destinationRectangle`. The source
    // rectangle is null: all of the bitmap.
    virtual void DrawBitmap(ID2D1Bitmap* bitmap, const D2D1_RECT_F* destinationRectangle,
                            FLOAT opacity, D2D1_BITMAP_INTERPOLATION_MODE interpolationMode,
                            const D2D1_RECT_F* sourceRectangle) = 0;

    virtual void PushAxisAlignedClip(const D2D1_RECT_F* clipRect,
                                     D2D1_ANTIALIAS_MODE antialiasMode) = 0;
    virtual void PopAxisAlignedClip() = 0;

protected:
    ~ID2D1RenderTarget() = default;
};

struct ID2D1BitmapRenderTarget : ID2D1RenderTarget {
    // The target's own pixels, which change as it is drawn on.
    virtual HRESULT GetBitmap(ID2D1Bitmap** bitmap) = 0;

protected:
    ~ID2D1BitmapRenderTarget() = default;
};

struct ID2D1Factory : IUnknown {
    // Draws straight into the rows of `target`, an IWICBitmap of this layer.
    virtual HRESULT
    CreateWicBitmapRenderTarget(IWICBitmap* target,
                                const D2D1_RENDER_TARGET_PROPERTIES* renderTargetProperties,
                                ID2D1RenderTarget** renderTarget) = 0;

protected:
    ~ID2D1Factory() = default;
};

HRESULT D2D1CreateFactory(D2D1_FACTORY_TYPE factoryType, ID2D1Factory** factory);
