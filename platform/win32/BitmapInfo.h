// What the pixels of a bitmap or the pictures of a video stream are. Stands for wingdi.h.
#pragma once

#include "platform/win32/Types.h"

inline constexpr DWORD BI_RGB = 0;       // pixels as they are, biBitCount bits each
inline constexpr DWORD BI_RLE8 = 1;      // run-length coded
inline constexpr DWORD BI_BITFIELDS = 3; // pixels with masks of their own

// As files hold it, little-endian. Rows are padded to 4 bytes; the bottom row comes first where
// biHeight is positive, the top row where it is negative.
struct BITMAPINFOHEADER {
    DWORD biSize; // of this structure, 40
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;       // 1
    WORD biBitCount;     // bits a pixel
    DWORD biCompression; // one of the above, or a four-character code
    DWORD biSizeImage;   // bytes
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};

static_assert(sizeof(BITMAPINFOHEADER) == 40, "files hold it as 40 bytes without a gap");

using LPBITMAPINFOHEADER = BITMAPINFOHEADER*;
