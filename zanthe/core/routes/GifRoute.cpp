#include <stdexcept>

#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

// There is no reader of GIF files in this build.
std::unique_ptr<VideoDecoder> DecoderRoutes::CreateGif(const std::string&) const {
    throw std::runtime_error("Can't create WICAnimatedGIFReader");
}

} // namespace Zanthe
