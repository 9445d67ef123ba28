#include "zanthe/audio/AudioMediaReaderFactory.h"

#include <utility>

#include <boost/make_shared.hpp>

#include "zanthe/audio/AudioRoute.h"
#include "zanthe/audio/IAudioBackends.h"

namespace Zanthe {

AudioMediaReaderFactory::AudioMediaReaderFactory(const std::string& path, int trackIndex,
                                                 int sampleRate)
    : AudioMediaReaderFactory(path, trackIndex, sampleRate, boost::make_shared<AudioBackends>()) {}

AudioMediaReaderFactory::AudioMediaReaderFactory(const std::string& path, int trackIndex,
                                                 int sampleRate,
                                                 boost::shared_ptr<const IAudioBackends> backends)
    : m_path(path)
    , m_trackIndex(trackIndex)
    , m_sampleRate(sampleRate)
    , m_backends(std::move(backends)) {}

AudioMediaReaderFactory::~AudioMediaReaderFactory() = default;

boost::shared_ptr<IAudioReader>
AudioMediaReaderFactory::Create_AudioMediaReader(bool recontainerAacInMp4) {
    switch (ChooseAudioRoute(m_path, boost::make_shared<WindowsVersionProvider>())) {
    case AudioRoute::Ffmpeg:
        m_trackIndex = -1; // an MP3 file has one track, whatever the host asked for
        return m_backends->CreateFfmpeg(m_path, m_trackIndex, m_sampleRate);
    case AudioRoute::Recording:
        return m_backends->CreateRecording(m_path, m_trackIndex);
    case AudioRoute::MediaFoundation:
        return m_backends->CreateMediaFoundation(m_path, recontainerAacInMp4, m_sampleRate);
    case AudioRoute::DirectShow:
        break;
    }
    return m_backends->CreateDirectShow(m_path);
}

} // namespace Zanthe
