// What decoded sound is, as the readers on Media Foundation ask for it.
#pragma once

#include <cstdint>

#include "platform/com/Guid.h"
#include "zanthe/core/Export.h"

namespace Zanthe {

struct MFAudioSampleFormat {
    GUID subtype{}; // MFAudioFormat_...
    std::uint32_t channels = 0;
    std::uint32_t samplesPerSecond = 0; // frames, that is: one sample of each channel
    std::uint32_t bitsPerSample = 0;
    std::uint32_t blockAlign = 0; // bytes of a frame

    // 44100 Hz, stereo, 32-bit float.
    ZANTHE_API static MFAudioSampleFormat CreateCanonical();

    friend bool operator==(const MFAudioSampleFormat&, const MFAudioSampleFormat&) = default;
};

} // namespace Zanthe
