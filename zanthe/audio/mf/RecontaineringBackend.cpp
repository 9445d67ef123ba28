#include <boost/make_shared.hpp>

#include "zanthe/audio/mf/MFRecontaineringAudioReader.h"
#include "zanthe/audio/mf/MediaFoundationBackends.h"

namespace Zanthe {

boost::shared_ptr<IAudioReader> MediaFoundationBackends::CreateRecontainering(
    const std::string& path, const std::string& temporaryFolder, int sampleRate) const {
    return boost::make_shared<MFRecontaineringAudioReader>(path, temporaryFolder, sampleRate);
}

} // namespace Zanthe
