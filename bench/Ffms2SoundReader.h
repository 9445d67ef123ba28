// FFMS2 among the contenders of the sound benches.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <ffms.h>

// Thread-safety: none.
class Ffms2SoundReader {
public:
    // Indexes the file and opens its first sound track, stereo. Throws std::runtime_error.
    explicit Ffms2SoundReader(const std::string& path);

    // The frames from `first` on, as far as there are such; answers how many.
    unsigned int Read(std::int64_t first, unsigned int count, float* left, float* right);

private:
    std::unique_ptr<FFMS_AudioSource, void (*)(FFMS_AudioSource*)> m_source;
    std::int64_t m_length = 0;
    std::vector<float> m_interleaved;
};
