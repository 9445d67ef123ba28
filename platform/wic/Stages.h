// What stands between a picture and its pixels: scaler, converter, rotator; and pixels in memory.
#pragma once

#include "platform/wic/WinCodec.h"

namespace wic {

HRESULT MakeFormatConverter(IWICFormatConverter** converter);
HRESULT MakeScaler(IWICBitmapScaler** scaler);
HRESULT MakeFlipRotator(IWICBitmapFlipRotator** rotator);

// As IWICImagingFactory::CreateBitmap says.
HRESULT MakeBitmap(UINT width, UINT height, REFWICPixelFormatGUID format, IWICBitmap** bitmap);

HRESULT MakePalette(IWICPalette** palette);
HRESULT MakePixelFormatInfo(REFWICPixelFormatGUID format, IWICComponentInfo** info);

// The rows of a bitmap that MakeBitmap made: premultiplied, width * 4 bytes a row. Null for any
// other object.
BYTE* BitsOf(IWICBitmap* bitmap);

} // namespace wic
