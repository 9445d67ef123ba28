#pragma once

#include "platform/av/PictureConversion.h"

namespace libyuv {
struct YuvConstants;
}

namespace av {

// The constants by which libyuv's kernels follow these rules to a step of 255; null where they
// cannot, so that something else must convert.
const libyuv::YuvConstants* KernelConstantsFor(const ColourRules& rules);

} // namespace av
