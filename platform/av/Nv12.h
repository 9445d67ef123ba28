// Pixels of NV12 that lie in a caller's memory.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/av/PictureConversion.h"

namespace av {

// `height` rows of brightness, then as many rows of colour differences as half of them (rounded
// up), all `stride` bytes apart.
struct Nv12Pixels {
    const std::uint8_t* bytes = nullptr; // borrowed
    int width = 0;
    int height = 0;
    std::ptrdiff_t stride = 0; // at least width, rounded up to even
    ColourRules rules;
};

// What ConvertToBgra makes of a picture, of these pixels. False when memory is short.
// Thread-safety: safe from any thread.
bool ConvertNv12ToBgra(const Nv12Pixels& pixels, std::uint8_t* rows, std::ptrdiff_t stride);

} // namespace av
