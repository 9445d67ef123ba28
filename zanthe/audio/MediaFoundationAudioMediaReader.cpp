#include "zanthe/audio/MediaFoundationAudioMediaReader.h"

#include <utility>

#include "zanthe/audio/mf/MediaFoundationBackends.h"

namespace Zanthe {

MediaFoundationAudioMediaReader::MediaFoundationAudioMediaReader(const std::string& path,
                                                                 bool recontainerAacInMp4,
                                                                 int sampleRate)
    : MediaFoundationAudioMediaReader(
          CreateMediaFoundationReader(path, recontainerAacInMp4, sampleRate,
                                      MediaFoundationBackends(), WindowsVersionProvider())) {}

MediaFoundationAudioMediaReader::MediaFoundationAudioMediaReader(
    boost::shared_ptr<IAudioReader> reader)
    : m_reader(std::move(reader)) {}

MediaFoundationAudioMediaReader::~MediaFoundationAudioMediaReader() = default;

unsigned int MediaFoundationAudioMediaReader::FillAudioBuffer(std::int64_t startFrame,
                                                              unsigned int frameCount,
                                                              std::vector<float*>& channels) {
    return m_reader->FillAudioBuffer(startFrame, frameCount, channels);
}

} // namespace Zanthe
