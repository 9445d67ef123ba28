#include "platform/win32/Text.h"
#include "zanthe/core/routes/DecoderRoutes.h"
#include "zanthe/images/WICAnimatedGIFLoader.h"
#include "zanthe/images/WICAnimatedGIFVideoDecoder.h"

namespace Zanthe {

std::unique_ptr<VideoDecoder> DecoderRoutes::CreateGif(const std::string& path) const {
    return std::make_unique<WICAnimatedGIFVideoDecoder>(
        path, std::make_unique<WICAnimatedGIFLoader>(win32::Utf8ToWide(path)));
}

} // namespace Zanthe
