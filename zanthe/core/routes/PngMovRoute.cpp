#include "zanthe/containers/PNGMOVVideoDecoder.h"
#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

std::unique_ptr<VideoDecoder> DecoderRoutes::CreatePngMov(const std::string& path,
                                                          int streamIndex) const {
    return PNGMOVVideoDecoder::create(path, streamIndex);
}

} // namespace Zanthe
