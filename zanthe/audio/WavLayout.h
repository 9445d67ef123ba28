// Where things stand in the WAV files that are written and read here. Not exported.
//
//      0  "RIFF", size of the file - 8, "WAVE"
//     12  "fmt ", 16, format tag, channels, rate, bytes a second, bytes a frame, bits a sample
//     36  "data", size of the file - 44
//     44  samples, left and right in turn
//
// All numbers are little-endian; the four of the format tag's kind are 16 bits wide, the rest 32.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Zanthe::WavLayout {

constexpr std::size_t HeaderBytes = 44;
constexpr std::size_t FormatTagOffset = 20;
constexpr std::size_t Channels = 2;

constexpr std::uint16_t PcmTag = 1;
constexpr std::uint16_t FloatTag = 3;

// Full scale of a 16-bit sample. 32767 at most is stored, so a sample of 1.0 loses one step.
constexpr double PcmScale = 32768.0;

} // namespace Zanthe::WavLayout
