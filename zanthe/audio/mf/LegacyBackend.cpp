#include "zanthe/audio/mf/MediaFoundationBackends.h"

namespace Zanthe {

// There is no source reader in this build to initialise it on.
boost::shared_ptr<IAudioReader> MediaFoundationBackends::CreateLegacy(const std::wstring&) const {
    return nullptr;
}

} // namespace Zanthe
