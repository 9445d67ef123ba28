#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

#include <utility>

#include "zanthe/audio/ffmpeg/AudioPipeline.h"

namespace Zanthe {

namespace {

constexpr int kChannelCount = 2;

} // namespace

std::unique_ptr<FFMPEGAudioReader> FFMPEGAudioReader::Create(const std::string& path,
                                                             int streamIndex, int sampleRate) {
    return std::unique_ptr<FFMPEGAudioReader>(new FFMPEGAudioReader(path, streamIndex, sampleRate));
}

FFMPEGAudioReader::FFMPEGAudioReader(std::string path, int streamIndex, int sampleRate)
    : m_path(std::move(path))
    , m_streamIndex(streamIndex)
    , m_sampleRate(sampleRate)
    , m_channelCount(kChannelCount)
    , m_pipeline(std::make_unique<FFMPEGDecoder::AudioPipeline>(m_path, m_sampleRate)) {}

FFMPEGAudioReader::~FFMPEGAudioReader() = default;

unsigned int FFMPEGAudioReader::FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                                std::vector<float*>& channels) {
    if (channels.size() != static_cast<std::size_t>(m_channelCount)) {
        return 0;
    }
    FFMPEGDecoder::Buffer request(channels, frameCount);
    request.start = startFrame;
    return static_cast<unsigned int>(m_pipeline->fill(request));
}

} // namespace Zanthe
