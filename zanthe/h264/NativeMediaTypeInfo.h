// What a file says of its video stream.
#pragma once

#include <cstdint>

#include "platform/com/Guid.h"

namespace Zanthe {

struct NativeMediaTypeInfo {
    GUID subtype{};           // an MFVideoFormat
    std::uint32_t width = 0;  // pixels
    std::uint32_t height = 0;
    std::uint32_t frameRateNumerator = 0; // 0/1: unknown
    std::uint32_t frameRateDenominator = 1;
    std::uint32_t pixelAspectRatioNumerator = 1; // corrected by the display size of the track
    std::uint32_t pixelAspectRatioDenominator = 1;
    std::int32_t rotation = 0; // clockwise degrees that a picture needs to stand upright
};

} // namespace Zanthe
