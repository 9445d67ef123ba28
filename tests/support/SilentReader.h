// A reader of sound that never has any.
#pragma once

#include <cstdint>
#include <vector>

#include "zanthe/audio/IAudioReader.h"

class SilentReader final : public Zanthe::IAudioReader {
public:
    // IAudioReader
    unsigned int FillAudioBuffer(std::int64_t, unsigned int, std::vector<float*>&) override {
        return 0;
    }
};
