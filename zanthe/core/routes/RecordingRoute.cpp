#include "zanthe/containers/BRECVideoDecoder.h"
#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

std::unique_ptr<VideoDecoder> DecoderRoutes::CreateRecording(const std::string& path,
                                                             int streamIndex) const {
    auto decoder = std::make_unique<BRECVideoDecoder>(path, streamIndex);
    decoder->initialize();
    return decoder;
}

} // namespace Zanthe
