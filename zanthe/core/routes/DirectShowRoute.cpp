#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

// No filter graph can be built in this build. A chain without a graph fails on the first thing that
// it asks of one, and by a bare text: no catch of std::exception takes it.
std::unique_ptr<VideoSampleReader>
DecoderRoutes::CreateDirectShow(const std::string&, int, bool,
                                const boost::shared_ptr<IDSChainManager>&) const {
    throw "Could not get the MediaControl interface from the FilterGraph";
}

// Without graphs there are no chains to manage, and no thread to start.
boost::shared_ptr<IDSChainManager> DecoderRoutes::CreateChainManager() const {
    return nullptr;
}

} // namespace Zanthe
