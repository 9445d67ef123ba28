#include <stdexcept>

#include "zanthe/audio/mf/MediaFoundationBackends.h"

namespace Zanthe {

// No track can be copied in this build.
boost::shared_ptr<IAudioReader>
MediaFoundationBackends::CreateRecontainering(const std::string&, const std::string&, int) const {
    throw std::runtime_error("Error re-containering audio!!");
}

} // namespace Zanthe
