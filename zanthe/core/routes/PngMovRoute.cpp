#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

// No sample of an MP4 file can be read in this build, so there is none to be decoded as PNG, and
// the file goes on to whatever else takes a ".mov".
std::unique_ptr<VideoDecoder> DecoderRoutes::CreatePngMov(const std::string&, int) const {
    return nullptr;
}

} // namespace Zanthe
