// Between image sources, bitmaps and memory.
#pragma once

#include <boost/shared_ptr.hpp>

#include "platform/com/Result.h"
#include "zanthe/core/Bitmap.h"
#include "zanthe/core/Export.h"

struct IWICBitmapSource;

namespace Gdiplus {
class Bitmap;
}

namespace Zanthe {

// Thread-safety: safe from any thread, on different sources.
class ZANTHE_API WICImageHelper {
public:
    // Pixels a side that a still image is scaled down to.
    static constexpr int DEFAULT_MAX_DECODING_DIMENSION = 4096;

    WICImageHelper() = delete;

    // Shrinks a size of which a side is above maxDimension, as FitSizeToBounds does with both
    // bounds at maxDimension; leaves any other alone.
    static void GetCappedImageSize(int& width, int& height, int maxDimension);

    // The source's pixels, which must be 32-bit premultiplied BGRA, as a bitmap of its size. Empty
    // when the source cannot give them. Throws what Bitmap's constructor throws.
    static boost::shared_ptr<Bitmap> CreateBitmapFromWICBitmapSource(IWICBitmapSource* source);

    // The same into `buffer`, at least width * height * 4 bytes, the top row first, without gaps
    // between the rows. The result of the first call that fails, with the buffer undefined.
    static HRESULT CopyWICBitmapSourceToBuffer(IWICBitmapSource* source, unsigned char* buffer);

    // *bitmap: a bitmap of the source's pixels as PixelFormat24bppRGB, the caller's to delete.
    // Where `memory` is given, *memory is what the bitmap stands on, the caller's to delete[] after
    // the bitmap; otherwise the bitmap keeps it.
    //
    // E_INVALIDARG for a null source or bitmap, E_OUTOFMEMORY, E_FAIL for a source without pixels,
    // else what the source says; nothing is handed out then.
    static HRESULT BitmapSourceToGdiPlusBitmap(IWICBitmapSource* source, Gdiplus::Bitmap** bitmap,
                                               unsigned char** memory);
};

} // namespace Zanthe
