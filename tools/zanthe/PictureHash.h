// A picture's pixels in one number, to tell pictures apart without keeping them.
#pragma once

#include <cstdint>

#include "tools/zanthe/LockedPixels.h"

namespace Program {

// Of the size and of every byte, the fourth of each pixel included. Two different pictures share a
// number by accident once in 2^64.
std::uint64_t HashOf(const LockedPixels& pixels);

} // namespace Program
