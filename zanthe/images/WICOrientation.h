// Pictures turned the way that their camera was held.
#pragma once

#include "platform/com/ComPtr.h"
#include "platform/wic/WinCodec.h"

namespace Zanthe {

// The transform that undoes an EXIF orientation, 1 to 8; no transform for any other value.
WICBitmapTransformOptions TransformOfOrientation(unsigned int orientation);

// `source`, which shows `frame`, turned as the frame's EXIF block says. A frame that says nothing
// leaves the source as it is.
com::ComPtr<IWICBitmapSource>
OrientedSource(IWICImagingFactory& factory, IWICBitmapFrameDecode& frame, IWICBitmapSource* source);

} // namespace Zanthe
