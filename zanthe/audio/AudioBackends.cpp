#include <boost/make_shared.hpp>

#include "zanthe/audio/BRECLibAudioMediaReader.h"
#include "zanthe/audio/DirectShowAudioMediaReader.h"
#include "zanthe/audio/IAudioBackends.h"
#include "zanthe/audio/MediaFoundationAudioMediaReader.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

namespace Zanthe {

boost::shared_ptr<IAudioReader> AudioBackends::CreateFfmpeg(const std::string& path, int trackIndex,
                                                            int sampleRate) const {
    return FFMPEGAudioReader::Create(path, trackIndex, sampleRate);
}

boost::shared_ptr<IAudioReader> AudioBackends::CreateRecording(const std::string& path,
                                                               int trackIndex) const {
    return boost::make_shared<BRECLibAudioMediaReader>(path, trackIndex);
}

boost::shared_ptr<IAudioReader> AudioBackends::CreateMediaFoundation(const std::string& path,
                                                                     bool recontainerAacInMp4,
                                                                     int sampleRate) const {
    return boost::make_shared<MediaFoundationAudioMediaReader>(path, recontainerAacInMp4,
                                                               sampleRate);
}

boost::shared_ptr<IAudioReader> AudioBackends::CreateDirectShow(const std::string& path) const {
    return boost::make_shared<DirectShowAudioMediaReader>(path);
}

} // namespace Zanthe
