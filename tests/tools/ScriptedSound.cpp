#include "tests/tools/ScriptedSound.h"

#include <algorithm>

ScriptedSound::ScriptedSound(std::int64_t frames)
    : planes(2, std::vector<float>(static_cast<std::size_t>(frames))) {
    for (std::size_t frame = 0; frame < planes[0].size(); ++frame) {
        planes[0][frame] = static_cast<float>(frame) / (1 << 24);
        planes[1][frame] = -planes[0][frame] - 0.5F;
    }
}

unsigned int ScriptedSound::FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                            std::vector<float*>& channels) {
    const Read read{startFrame, frameCount};
    reads.push_back(read);
    return script ? script(reads.size() - 1, read, channels) : Honest(read, channels);
}

unsigned int ScriptedSound::Honest(const Read& read, std::vector<float*>& channels) const {
    const auto length = static_cast<std::int64_t>(planes[0].size());
    const std::int64_t count = std::clamp<std::int64_t>(length - read.start, 0, read.count);
    for (std::size_t channel = 0; channel < planes.size(); ++channel) {
        if (count > 0) {
            std::copy_n(planes[channel].begin() + read.start, count, channels[channel]);
        }
    }
    return static_cast<unsigned int>(count);
}
