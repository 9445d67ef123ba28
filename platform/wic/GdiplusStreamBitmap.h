// GDI+ as far as pictures are read with it: PNG, out of a stream. Stands for that part of gdiplus.h
// and its flat functions.
#pragma once

#include "platform/com/Stream.h"
#include "platform/wic/Gdiplus.h"

namespace Gdiplus {

inline constexpr PixelFormat PixelFormat8bppIndexed = 0x30803;

inline constexpr unsigned int ImageLockModeRead = 1;

struct GpRect {
    int X;
    int Y;
    int Width;
    int Height;
};

// Pixels while they are locked.
struct BitmapData {
    unsigned int Width;
    unsigned int Height;
    int Stride; // bytes from one row to the next
    Gdiplus::PixelFormat PixelFormat;
    void* Scan0; // the top row
    std::uintptr_t Reserved;
};

// Thread-safety: safe from any thread, on different images.
namespace DllExports {

// *bitmap: the PNG picture that begins where `stream` stands, the caller's to give to
// GdipDisposeImage; null on failure. Only its header is read; the stream is kept, and its position
// moves whenever the picture is used. InvalidParameter for null, GenericError where it is no PNG
// picture or has more than 2^27 pixels, OutOfMemory.
GpStatus GdipCreateBitmapFromStream(IStream* stream, GpBitmap** bitmap);

// PixelFormat32bppARGB of a picture with transparency, PixelFormat8bppIndexed of one whose pixels
// are numbers of colours, however deep, else PixelFormat24bppRGB, grey pictures too. Of a bitmap
// over memory what it was made with. InvalidParameter for null.
GpStatus GdipGetImagePixelFormat(GpImage* image, PixelFormat* format);

// The pixels of `rect`, or of the whole picture where that is null, in *lockedBitmapData, until
// GdipBitmapUnlockBits. Decodes the picture. Offered for pictures from streams, for reading
// (`flags` is ImageLockModeRead) and in PixelFormat32bppARGB of a picture that has that format;
// InvalidParameter otherwise, for null, and for a rectangle that is empty or not within the
// picture. GenericError where the picture is damaged or cut off, or locked already, OutOfMemory.
GpStatus GdipBitmapLockBits(GpBitmap* bitmap, const GpRect* rect, unsigned int flags,
                            PixelFormat format, BitmapData* lockedBitmapData);

// Ends what the function above began; its pixels are gone then. InvalidParameter for null,
// GenericError where nothing is locked.
GpStatus GdipBitmapUnlockBits(GpBitmap* bitmap, BitmapData* lockedBitmapData);

} // namespace DllExports

} // namespace Gdiplus
