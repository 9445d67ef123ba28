// Pictures of libvips, rendered.
#pragma once

#include "platform/wic/PixelRows.h"
#include "platform/wic/VipsHandles.h"

namespace wic {

// Runs the picture `image`, of bytes of this kind, through libvips into the rows of `rendering`.
// Nothing of it has been asked for before: it may be one that is read in order only.
HRESULT RenderVips(VipsImagePtr image, PixelKind kind, const Rendering& rendering);

// The same of pixels in memory, of four bytes and without gaps between the rows; they are borrowed
// for the call.
HRESULT RenderMemory(const BYTE* pixels, const PictureShape& shape, const PixelKind& kind,
                     const Rendering& rendering);

// The same of a picture as a loader gives it, of any number, type and meaning of bands.
// `premultiplied`: its colours are multiplied by their alpha, and are gray or red, green and blue.
HRESULT RenderLoaded(VipsImagePtr image, bool premultiplied, const Rendering& rendering);

} // namespace wic
