#include <boost/make_shared.hpp>

#include "zanthe/audio/mf/MFAudioReader.h"
#include "zanthe/audio/mf/MediaFoundationBackends.h"

namespace Zanthe {

boost::shared_ptr<IAudioReader> MediaFoundationBackends::CreateCurrent(const std::string& path,
                                                                       int sampleRate) const {
    auto reader = boost::make_shared<MFAudioReader>(path);
    return reader->Initialize(sampleRate) ? reader : nullptr;
}

} // namespace Zanthe
