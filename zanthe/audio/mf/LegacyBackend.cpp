#include <boost/make_shared.hpp>

#include "zanthe/audio/mf/LegacyMFAudioReader.h"
#include "zanthe/audio/mf/MediaFoundationBackends.h"

namespace Zanthe {

boost::shared_ptr<IAudioReader>
MediaFoundationBackends::CreateLegacy(const std::wstring& path) const {
    auto reader = boost::make_shared<LegacyMFAudioReader>(path, false);
    return SUCCEEDED(reader->Initialize()) ? reader : nullptr;
}

} // namespace Zanthe
