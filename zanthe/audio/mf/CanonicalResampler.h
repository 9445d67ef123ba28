// The system's resampler, on its way to the canonical format.
//
// Thread-safety: none; one resampler serves one thread at a time.
#pragma once

#include <cstdint>

#include "platform/com/ComPtr.h"
#include "platform/mf/Transform.h"

namespace Zanthe {

class StereoPlanes;

// Empty where the system has none.
com::ComPtr<IMFTransform> CreateResampler();

// Takes sound of the type `input` from now on. What the resampler answers to it.
HRESULT SetResamplerTypes(IMFTransform& resampler, IMFMediaType& input);

// A sample with room for frameCount frames of output, to be pulled into; empty where there is no
// memory for it.
com::ComPtr<IMFSample> MakeOutputSample(unsigned int frameCount);

// Has the sample hold what comes out next. MF_E_TRANSFORM_NEED_MORE_INPUT: nothing is left.
HRESULT PullResampled(IMFTransform& resampler, IMFSample& output);

// Appends what is in the first buffer of the sample, in the canonical format; answers how many
// frames that were, 0 where the buffer cannot be locked.
unsigned int TakeFrames(IMFSample& sample, StereoPlanes& planes);

// A sample with a copy of these bytes; empty where there is no memory for it.
com::ComPtr<IMFSample> MakeSampleOf(const unsigned char* bytes, std::uint32_t byteCount);

} // namespace Zanthe
