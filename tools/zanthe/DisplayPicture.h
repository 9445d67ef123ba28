// A picture as it is to be looked at: upright, and in the shape that its pixels say.
#pragma once

#include "tools/zanthe/Canvas.h"
#include "tools/zanthe/IVideo.h"
#include "tools/zanthe/LockedPixels.h"

namespace Program {

// The size that a stored picture of width x height has when it is shown: one side stretched so that
// the pixels become square, then turned. No side gets longer than 16384 by it; where stretching
// would do that, the other side shrinks. REQUIRES: a size above 0.
Size DisplaySize(const VideoFacts& facts);

// The stored pixels as they are, without padding, top row first. A picture without alpha comes out
// opaque.
BitmapPtr AsStored(const LockedPixels& pixels, const VideoFacts& facts);

// The picture in its display size. Turning copies pixels and changes none; stretching filters.
//
// Throws std::runtime_error when the picture is to be stretched and cairo cannot draw it: a side is
// above 32767.
BitmapPtr AsShown(const LockedPixels& pixels, const VideoFacts& facts);

} // namespace Program
