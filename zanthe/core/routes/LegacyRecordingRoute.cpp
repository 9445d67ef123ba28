#include "zanthe/core/TextException.h"
#include "zanthe/core/routes/DecoderRoutes.h"

namespace Zanthe {

// No compound file can be opened in this build, so every one fails as a file that is none.
std::unique_ptr<VideoDecoder> DecoderRoutes::CreateLegacyRecording(const std::string&) const {
    throw TextException("OrirecScreenVideoDecoder - orirec is not a structured-storage file!");
}

} // namespace Zanthe
