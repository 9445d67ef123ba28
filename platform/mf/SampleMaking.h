// Samples made of bytes.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/com/ComPtr.h"
#include "platform/mf/Sample.h"

namespace mf {

// A sample with one buffer, which has a copy of the bytes; time and duration in 100 ns. Empty on
// failure.
HRESULT MakeFilledSample(const std::vector<std::uint8_t>& bytes, LONGLONG time, LONGLONG duration,
                         com::ComPtr<IMFSample>& sample);

} // namespace mf
