#include "zanthe/audio/AudioMediaReaderFactory.h"

#include <boost/make_shared.hpp>

#include "zanthe/audio/AudioRoute.h"
#include "zanthe/audio/BRECLibAudioMediaReader.h"
#include "zanthe/audio/DirectShowAudioMediaReader.h"
#include "zanthe/audio/MediaFoundationAudioMediaReader.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

namespace Zanthe {

AudioMediaReaderFactory::AudioMediaReaderFactory(const std::string& path, int trackIndex,
                                                 int sampleRate)
    : m_path(path)
    , m_trackIndex(trackIndex)
    , m_sampleRate(sampleRate) {}

AudioMediaReaderFactory::~AudioMediaReaderFactory() = default;

boost::shared_ptr<IAudioReader>
AudioMediaReaderFactory::Create_AudioMediaReader(bool recontainerAacInMp4) {
    switch (ChooseAudioRoute(m_path, boost::make_shared<WindowsVersionProvider>())) {
    case AudioRoute::Ffmpeg:
        m_trackIndex = -1; // an MP3 file has one track, whatever the host asked for
        return FFMPEGAudioReader::Create(m_path, m_trackIndex, m_sampleRate);
    case AudioRoute::Recording:
        return boost::make_shared<BRECLibAudioMediaReader>(m_path, m_trackIndex);
    case AudioRoute::MediaFoundation:
        return boost::make_shared<MediaFoundationAudioMediaReader>(m_path, recontainerAacInMp4,
                                                                   m_sampleRate);
    case AudioRoute::DirectShow:
        break;
    }
    return boost::make_shared<DirectShowAudioMediaReader>(m_path);
}

} // namespace Zanthe
