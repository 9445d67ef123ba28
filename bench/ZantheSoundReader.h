// This library among the contenders for sound.
#pragma once

#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "bench/SoundContender.h"
#include "zanthe/audio/IAudioReader.h"

class ZantheSoundReader final : public SoundContender {
public:
    explicit ZantheSoundReader(boost::shared_ptr<Zanthe::IAudioReader> reader)
        : m_reader(std::move(reader)) {}

    unsigned int ReadAt(std::int64_t frame, Span& span) override {
        std::vector<float*> planes{span.left.data(), span.right.data()};
        return m_reader->FillAudioBuffer(frame, static_cast<unsigned int>(span.left.size()),
                                         planes);
    }

private:
    boost::shared_ptr<Zanthe::IAudioReader> m_reader;
};
