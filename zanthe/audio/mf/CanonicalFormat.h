// The one format that the readers for older systems deliver.
#pragma once

#include "zanthe/audio/mf/MFAudioSampleFormat.h"

namespace Zanthe {

// The same value for the life of the process.
const MFAudioSampleFormat& CanonicalFormat();

// What is in it, as plain numbers.
inline constexpr std::uint32_t CanonicalRate = 44100;   // Hz
inline constexpr std::uint32_t CanonicalBlockAlign = 8; // bytes of a frame

} // namespace Zanthe
