// The imaging component: files of pictures, decoded, scaled, converted and turned on demand. Stands
// for wincodec.h and wincodecsdk.h, as far as pictures are read with it.
//
//     com::ComPtr<IWICImagingFactory> factory;
//     CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
//                      IID_IWICImagingFactory, factory.PutVoid());
//     factory->CreateDecoderFromFilename(path, nullptr, GENERIC_READ,
//                                        WICDecodeMetadataCacheOnDemand, decoder.Put());
//     decoder->GetFrame(0, frame.Put());
//
// What is decoded: JPEG, PNG, TIFF, WebP and HEIF on libvips, GIF on giflib, BMP by the layer
// itself. Sources are recipes: nothing is decoded before CopyPixels, which runs the whole chain of
// scaler, converter and rotator at once, straight into the caller's rows.
//
// Thread-safety: the factory serves any thread; a decoder and all that comes from it serve one
// thread at a time.
#pragma once

#include "platform/com/Unknown.h"
#include "platform/wic/PixelFormats.h"
#include "platform/win32/Types.h"

struct tagPROPVARIANT;

using WICInProcPointer = BYTE*;
using WICColor = std::uint32_t; // 0xAARRGGBB

inline constexpr HRESULT WINCODEC_ERR_WRONGSTATE = com::ResultOf(0x88982F04);
inline constexpr HRESULT WINCODEC_ERR_VALUEOUTOFRANGE = com::ResultOf(0x88982F05);
inline constexpr HRESULT WINCODEC_ERR_UNKNOWNIMAGEFORMAT = com::ResultOf(0x88982F07);
inline constexpr HRESULT WINCODEC_ERR_NOTINITIALIZED = com::ResultOf(0x88982F0C);
inline constexpr HRESULT WINCODEC_ERR_PROPERTYNOTFOUND = com::ResultOf(0x88982F40);
inline constexpr HRESULT WINCODEC_ERR_PALETTEUNAVAILABLE = com::ResultOf(0x88982F45);
inline constexpr HRESULT WINCODEC_ERR_COMPONENTNOTFOUND = com::ResultOf(0x88982F50);
inline constexpr HRESULT WINCODEC_ERR_IMAGESIZEOUTOFRANGE = com::ResultOf(0x88982F51);
inline constexpr HRESULT WINCODEC_ERR_BADIMAGE = com::ResultOf(0x88982F60);
inline constexpr HRESULT WINCODEC_ERR_FRAMEMISSING = com::ResultOf(0x88982F62);
inline constexpr HRESULT WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT = com::ResultOf(0x88982F80);
inline constexpr HRESULT WINCODEC_ERR_UNSUPPORTEDOPERATION = com::ResultOf(0x88982F81);
inline constexpr HRESULT WINCODEC_ERR_INSUFFICIENTBUFFER = com::ResultOf(0x88982F8C);

inline constexpr CLSID CLSID_WICImagingFactory = {
    0xCACAF262, 0x9370, 0x4615, {0xA1, 0x3B, 0x9F, 0x55, 0x39, 0xDA, 0x4C, 0x0A}};

inline constexpr IID IID_IWICImagingFactory = {
    0xEC5EC8A9, 0xC395, 0x4314, {0x9C, 0x77, 0x54, 0xD7, 0xA9, 0x35, 0xFF, 0x70}};
inline constexpr IID IID_IWICPalette = {
    0x00000040, 0xA8F2, 0x4877, {0xBA, 0x0A, 0xFD, 0x2B, 0x66, 0x45, 0xFB, 0x94}};
inline constexpr IID IID_IWICBitmapSource = {
    0x00000120, 0xA8F2, 0x4877, {0xBA, 0x0A, 0xFD, 0x2B, 0x66, 0x45, 0xFB, 0x94}};
inline constexpr IID IID_IWICFormatConverter = {
    0x00000301, 0xA8F2, 0x4877, {0xBA, 0x0A, 0xFD, 0x2B, 0x66, 0x45, 0xFB, 0x94}};
inline constexpr IID IID_IWICBitmapScaler = {
    0x00000302, 0xA8F2, 0x4877, {0xBA, 0x0A, 0xFD, 0x2B, 0x66, 0x45, 0xFB, 0x94}};
inline constexpr IID IID_IWICBitmapFlipRotator = {
    0x5009834F, 0x2D6A, 0x41CE, {0x9E, 0x1B, 0x17, 0xC5, 0xAF, 0xF7, 0xA7, 0x82}};
inline constexpr IID IID_IWICBitmap = {
    0x00000121, 0xA8F2, 0x4877, {0xBA, 0x0A, 0xFD, 0x2B, 0x66, 0x45, 0xFB, 0x94}};
inline constexpr IID IID_IWICBitmapDecoder = {
    0x9EDDE9E7, 0x8DEE, 0x47EA, {0x99, 0xDF, 0xE6, 0xFA, 0xF2, 0xED, 0x44, 0xBF}};
inline constexpr IID IID_IWICBitmapFrameDecode = {
    0x3B16811B, 0x6A43, 0x4EC9, {0xA8, 0x13, 0x3D, 0x93, 0x0C, 0x13, 0xB9, 0x40}};
inline constexpr IID IID_IWICMetadataQueryReader = {
    0x30989668, 0xE1C9, 0x4597, {0xB3, 0x95, 0x45, 0x8E, 0xED, 0xB8, 0x08, 0xDF}};
inline constexpr IID IID_IWICComponentInfo = {
    0x23BC3F0A, 0x698B, 0x4357, {0x88, 0x6B, 0xF2, 0x4D, 0x50, 0x67, 0x13, 0x34}};
inline constexpr IID IID_IWICPixelFormatInfo = {
    0xE8EDA601, 0x3D48, 0x431A, {0xAB, 0x44, 0x69, 0x05, 0x9B, 0xE8, 0x8B, 0xBE}};

enum WICDecodeOptions {
    WICDecodeMetadataCacheOnDemand = 0,
};

enum WICBitmapCreateCacheOption {
    WICBitmapCacheOnLoad = 2,
};

enum WICBitmapInterpolationMode {
    WICBitmapInterpolationModeCubic = 2,
};

enum WICBitmapDitherType {
    WICBitmapDitherTypeNone = 0,
};

enum WICBitmapPaletteType {
    WICBitmapPaletteTypeCustom = 0,
};

// Bits 0 and 1 are quarter turns clockwise; they come after bit 3, which exchanges left and right,
// and bit 4, which exchanges top and bottom.
enum WICBitmapTransformOptions {
    WICBitmapTransformRotate0 = 0,
    WICBitmapTransformRotate90 = 1,
    WICBitmapTransformRotate180 = 2,
    WICBitmapTransformRotate270 = 3,
    WICBitmapTransformFlipHorizontal = 8,
    WICBitmapTransformFlipVertical = 16,
};

// Pixels; X and Y are the top left corner.
struct WICRect {
    int X;
    int Y;
    int Width;
    int Height;
};

// Up to 256 colours.
struct IWICPalette : IUnknown {
    // E_INVALIDARG for null and for more than 256.
    virtual HRESULT InitializeCustom(WICColor* colors, UINT colorCount) = 0;
    virtual HRESULT GetColorCount(UINT* count) = 0;

    // The first colours, up to `capacity` of them; *actualColors says how many.
    virtual HRESULT GetColors(UINT capacity, WICColor* colors, UINT* actualColors) = 0;

protected:
    ~IWICPalette() = default;
};

struct IWICBitmapSource : IUnknown {
    virtual HRESULT GetSize(UINT* width, UINT* height) = 0; // pixels
    virtual HRESULT GetPixelFormat(WICPixelFormatGUID* format) = 0;
    virtual HRESULT GetResolution(double* dpiX, double* dpiY) = 0; // 96 where nobody says

    // Fills in `palette`; WINCODEC_ERR_PALETTEUNAVAILABLE where there is none.
    virtual HRESULT CopyPalette(IWICPalette* palette) = 0;

    // Writes the pixels, row by row, `stride` bytes apart, the top row first. `rect` is null for
    // all of them; a part of the picture is WINCODEC_ERR_UNSUPPORTEDOPERATION. Pixels are given in
    // the three formats that PixelFormats.h calls rendered; a source of another format, before a
    // converter, answers WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT. Other failures:
    // WINCODEC_ERR_INSUFFICIENTBUFFER, WINCODEC_ERR_BADIMAGE, E_OUTOFMEMORY; the rows are
    // undefined then.
    virtual HRESULT CopyPixels(const WICRect* rect, UINT stride, UINT bufferSize, BYTE* buffer) = 0;

protected:
    ~IWICBitmapSource() = default;
};

// A source in another pixel format, one of those that PixelFormats.h calls rendered.
struct IWICFormatConverter : IWICBitmapSource {
    virtual HRESULT Initialize(IWICBitmapSource* source, REFWICPixelFormatGUID format,
                               WICBitmapDitherType dither, IWICPalette* palette,
                               double alphaThresholdPercent,
                               WICBitmapPaletteType paletteTranslate) = 0;

protected:
    ~IWICFormatConverter() = default;
};

// A source at another size.
struct IWICBitmapScaler : IWICBitmapSource {
    // Only the cubic mode is known. Where a picture shrinks, the cubic kernel is stretched over the
    // pixels that become one, and alpha weighs the colours.
    virtual HRESULT Initialize(IWICBitmapSource* source, UINT width, UINT height,
                               WICBitmapInterpolationMode mode) = 0;

protected:
    ~IWICBitmapScaler() = default;
};

// A source turned and mirrored.
struct IWICBitmapFlipRotator : IWICBitmapSource {
    virtual HRESULT Initialize(IWICBitmapSource* source, WICBitmapTransformOptions options) = 0;

protected:
    ~IWICBitmapFlipRotator() = default;
};

// Pixels in memory.
struct IWICBitmap : IWICBitmapSource {
protected:
    ~IWICBitmap() = default;
};

struct IWICMetadataQueryReader : IUnknown {
    // The item of this path in *value, the caller's to clear; WINCODEC_ERR_PROPERTYNOTFOUND where
    // the file has none. What is known: "/app1/ifd/{ushort=274}" of a JPEG frame, and of GIF files
    // "/logscrdesc/...", "/appext/...", and of their frames "/imgdesc/...", "/grctlext/...".
    virtual HRESULT GetMetadataByName(LPCWSTR name, tagPROPVARIANT* value) = 0;

protected:
    ~IWICMetadataQueryReader() = default;
};

struct IWICBitmapFrameDecode : IWICBitmapSource {
    virtual HRESULT GetMetadataQueryReader(IWICMetadataQueryReader** reader) = 0;

protected:
    ~IWICBitmapFrameDecode() = default;
};

struct IWICBitmapDecoder : IUnknown {
    // The file's global palette.
    virtual HRESULT CopyPalette(IWICPalette* palette) = 0;
    virtual HRESULT GetMetadataQueryReader(IWICMetadataQueryReader** reader) = 0;
    virtual HRESULT GetFrameCount(UINT* count) = 0;

    // WINCODEC_ERR_FRAMEMISSING for an index at or past the count. The frame keeps the file open.
    virtual HRESULT GetFrame(UINT index, IWICBitmapFrameDecode** frame) = 0;

protected:
    ~IWICBitmapDecoder() = default;
};

struct IWICComponentInfo : IUnknown {
protected:
    ~IWICComponentInfo() = default;
};

struct IWICPixelFormatInfo : IWICComponentInfo {
    virtual HRESULT GetBitsPerPixel(UINT* bits) = 0;

protected:
    ~IWICPixelFormatInfo() = default;
};

struct IWICImagingFactory : IUnknown {
    // *decoder: the decoder of the file, which stays open as long as it lives. `vendor` is null,
    // `access` GENERIC_READ. WINCODEC_ERR_COMPONENTNOTFOUND where the bytes are of no known format,
    // WINCODEC_ERR_BADIMAGE where its header makes no sense,
    // WINCODEC_ERR_IMAGESIZEOUTOFRANGE where it claims more pixels than are ever decoded, and a
    // failure of the system where there is no such file.
    virtual HRESULT CreateDecoderFromFilename(LPCWSTR filename, const GUID* vendor, DWORD access,
                                              WICDecodeOptions options,
                                              IWICBitmapDecoder** decoder) = 0;

    // What is known of a pixel format, as IWICPixelFormatInfo; WINCODEC_ERR_COMPONENTNOTFOUND.
    virtual HRESULT CreateComponentInfo(REFCLSID component, IWICComponentInfo** info) = 0;

    virtual HRESULT CreatePalette(IWICPalette** palette) = 0;
    virtual HRESULT CreateFormatConverter(IWICFormatConverter** converter) = 0;
    virtual HRESULT CreateBitmapScaler(IWICBitmapScaler** scaler) = 0;
    virtual HRESULT CreateBitmapFlipRotator(IWICBitmapFlipRotator** rotator) = 0;

    // Pixels of zero. Only GUID_WICPixelFormat32bppPBGRA is made;
    // WINCODEC_ERR_IMAGESIZEOUTOFRANGE beyond wic::MaxSurfacePixels.
    virtual HRESULT CreateBitmap(UINT width, UINT height, REFWICPixelFormatGUID format,
                                 WICBitmapCreateCacheOption option, IWICBitmap** bitmap) = 0;

protected:
    ~IWICImagingFactory() = default;
};
