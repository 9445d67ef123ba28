#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "zanthe/audio/IAudioReader.h"

// A reader over a sound in memory that keeps its contract, unless a test bends it.
class ScriptedSound : public Zanthe::IAudioReader {
public:
    struct Read {
        std::int64_t start;
        unsigned int count;
        bool operator==(const Read&) const = default;
    };

    // What a bent reader does instead of `Honest`; called with the number of the read, from 0.
    using Script = std::function<unsigned int(std::size_t index, const Read& read,
                                              std::vector<float*>& channels)>;

    // `frames` stereo frames, no two of them the same.
    explicit ScriptedSound(std::int64_t frames);

    unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                 std::vector<float*>& channels) override;

    // What the contract asks for.
    unsigned int Honest(const Read& read, std::vector<float*>& channels) const;

    std::vector<std::vector<float>> planes;
    std::vector<Read> reads;
    Script script;
};
