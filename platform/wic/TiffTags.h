// The one question about TIFF files that libvips does not answer.
#pragma once

#include "platform/wic/InputFile.h"

namespace wic {

// Whether the first picture of the TIFF file has pixels of four bytes, red, green, blue and alpha,
// whose colours the file says are multiplied by the alpha. False for BigTIFF, which such pixels are
// seldom put in.
bool IsPremultipliedRgba(const InputFile& file);

} // namespace wic
