// Whole WAV files in and out in one call: stereo, planar floats, a fixed 44-byte header.
//
//     using Zanthe::WavUtl;
//     WavUtl::WriteWav("out.wav", {left, right}, WavUtl::WavFormat::Float32, 48000);
//     auto planes = WavUtl::ReadWav("out.wav");
//
// For sound that need not fit into memory see WavWriter.
#pragma once

#include <string>
#include <vector>

#include "zanthe/core/Export.h"

namespace Zanthe {

// Thread-safety: stateless; safe from any thread, on different files.
class ZANTHE_API WavUtl {
public:
    // How samples are stored. Every value other than Float32 means 16-bit signed PCM.
    enum class WavFormat : int {
        Pcm16 = 0,
        Float32 = 1,
    };

    // Writes `channels`, which must be exactly 2 planes of equal length, at `sampleRate` Hz to the
    // file at `path` (UTF-8), replacing it. PCM rounds sample * 32768 to the nearest, ties away
    // from zero, and clamps to [-32768, 32767]; a NaN is written as 0.
    //
    // False without touching the file when the planes are not 2 of equal length; false also when
    // the file could not be opened or written whole.
    static bool WriteWav(const std::string& path, const std::vector<std::vector<float>>& channels,
                         WavFormat format, int sampleRate);

    // The samples of a file that WriteWav wrote, as 2 planes at full scale 1.0.
    //
    // Only the format tag of the header is looked at (3: floats, anything else: 16-bit); what
    // follows byte 44 is read to the end of the file as left and right in turn, so a mono file
    // comes out as if it were stereo, and a file with further chunks yields them as samples. When
    // the file ends after a left sample, the right one before it is repeated (0 in the first
    // frame). 2 empty planes when there is no such file or it is no regular one.
    static std::vector<std::vector<float>> ReadWav(const std::string& path);
};

} // namespace Zanthe
