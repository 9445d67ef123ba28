// Writes stereo sound into a RIFF WAVE file as it comes, span by span, so that a file of any length
// needs no more memory than one span.
//
//     Zanthe::WavWriter writer("out.wav", Zanthe::WavUtl::WavFormat::Float32, 44100);
//     while (more) writer.Append(left, right, frames);
//     if (!writer.Finish()) ...
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>

#include "zanthe/audio/WavUtl.h"
#include "zanthe/core/Export.h"

namespace Zanthe {

// Thread-safety: none; one writer serves one thread at a time.
class ZANTHE_API WavWriter {
public:
    // Frames that fit a file in this format: the sizes in its header are 32 bits wide.
    static std::int64_t MaxFrames(WavUtl::WavFormat format);

    // Opens (and truncates) the file at `path` (UTF-8) and writes a header whose sizes say
    // "unfinished". sampleRate in Hz. A failure shows in the answer of Finish.
    WavWriter(const std::string& path, WavUtl::WavFormat format, int sampleRate);

    // Appends `frames` sample frames from the two planes, which stay the caller's. PCM rounds
    // sample * 32768 to the nearest, ties away from zero, and clamps; a NaN is written as 0.
    void Append(const float* left, const float* right, std::size_t frames);

    // Fills in the sizes and closes the file. True when every byte so far was written; false when
    // the file could not be opened or written, or holds more than MaxFrames.
    bool Finish();

private:
    void WriteHeader(std::uint64_t fileBytes);

    std::ofstream m_stream;
    WavUtl::WavFormat m_format;
    int m_sampleRate; // Hz
};

} // namespace Zanthe
