// A picture in another size.
#pragma once

#include "platform/av/Picture.h"

namespace av {

// The picture, scaled, with the same times, matrix and range; in memory, whatever it was in. Null
// for a format that nothing scales, a size that is no size, or when memory is short.
// Thread-safety: safe from any thread.
PicturePtr ScalePicture(const Picture& picture, int width, int height);

} // namespace av
