// A stream's parameter sets, in the form that a byte stream has them.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/av/Handles.h"

namespace av {

// H.264's and HEVC's parameter sets, each behind a start code; for other codecs what is stored,
// as it is. Empty where there is nothing, or nothing that can be read.
std::vector<std::uint8_t> SequenceHeaderOf(const AVCodecParameters& parameters);

} // namespace av
