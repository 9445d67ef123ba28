#include "zanthe/containers/OrirecScreenVideoDecoder.h"
#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

std::unique_ptr<VideoDecoder>
DecoderRoutes::CreateLegacyRecording(const std::string& containerPath) const {
    return OrirecScreenVideoDecoder::create(containerPath);
}

} // namespace Zanthe
