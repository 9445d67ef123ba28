#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

// There is no source reader in this build to make an H.264 reader on.
std::unique_ptr<VideoSampleReader>
DecoderRoutes::CreateMediaFoundation(const std::string&, int, DecoderOutputFormat,
                                     IMFDXGIDeviceManager*) const {
    return nullptr;
}

} // namespace Zanthe
