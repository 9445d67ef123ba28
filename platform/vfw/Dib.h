// Pictures as rows of 16, 24 or 32 bits a pixel.
#pragma once

#include "platform/av/Picture.h"
#include "platform/win32/BitmapInfo.h"

namespace vfw {

// How many rows the format has, whichever way up.
int RowsOf(const BITMAPINFOHEADER& format);

// Whether WriteDib can write a picture of this size in the format.
bool CanWriteDib(const BITMAPINFOHEADER& format, int width, int height);

// Writes the picture into `rows`, the caller's, in the layout that Vfw.h tells. The picture's size
// may be smaller than the format's, as codecs round; what it does not cover stays as it was, and
// what lies beyond the format is cut off. False where the picture cannot be converted.
bool WriteDib(const av::Picture& picture, const BITMAPINFOHEADER& format, void* rows);

} // namespace vfw
