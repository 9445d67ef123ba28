#include "bench/Ffms2SoundReader.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace {

// Its functions write their error's text into a caller's buffer.
struct Failure {
    std::array<char, 512> text{};
    FFMS_ErrorInfo info{FFMS_ERROR_SUCCESS, FFMS_ERROR_SUCCESS, static_cast<int>(text.size()),
                        text.data()};

    void Require(bool success) const {
        if (!success) {
            throw std::runtime_error(std::string("ffms2: ") + text.data());
        }
    }
};

using IndexPtr = std::unique_ptr<FFMS_Index, void (*)(FFMS_Index*)>;

IndexPtr MakeIndex(const std::string& path, Failure& failure) {
    FFMS_Indexer* indexer = FFMS_CreateIndexer(path.c_str(), &failure.info);
    failure.Require(indexer != nullptr);
    FFMS_TrackTypeIndexSettings(indexer, FFMS_TYPE_AUDIO, 1, 0);
    IndexPtr index(FFMS_DoIndexing2(indexer, FFMS_IEH_ABORT, &failure.info), FFMS_DestroyIndex);
    failure.Require(index != nullptr);
    return index;
}

} // namespace

Ffms2SoundReader::Ffms2SoundReader(const std::string& path)
    : m_source(nullptr, FFMS_DestroyAudioSource) {
    static const bool started = (FFMS_Init(0, 0), true);
    static_cast<void>(started);
    Failure failure;
    const IndexPtr index = MakeIndex(path, failure);
    const int track = FFMS_GetFirstTrackOfType(index.get(), FFMS_TYPE_AUDIO, &failure.info);
    failure.Require(track >= 0);
    m_source.reset(FFMS_CreateAudioSource(path.c_str(), track, index.get(), FFMS_DELAY_NO_SHIFT,
                                          &failure.info));
    failure.Require(m_source != nullptr);
    const FFMS_AudioProperties* sound = FFMS_GetAudioProperties(m_source.get());
    m_length = sound->NumSamples;
    if (sound->SampleFormat != FFMS_FMT_FLT || sound->Channels != 2) {
        throw std::runtime_error("ffms2: not floats in stereo");
    }
}

unsigned int Ffms2SoundReader::Read(std::int64_t first, unsigned int count, float* left,
                                    float* right) {
    const auto frames =
        static_cast<unsigned int>(std::clamp<std::int64_t>(m_length - first, 0, count));
    m_interleaved.resize(std::size_t{frames} * 2);
    Failure failure;
    failure.Require(frames == 0 || FFMS_GetAudio(m_source.get(), m_interleaved.data(), first,
                                                 frames, &failure.info) == 0);
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] = m_interleaved[2 * i];
        right[i] = m_interleaved[2 * i + 1];
    }
    return frames;
}
