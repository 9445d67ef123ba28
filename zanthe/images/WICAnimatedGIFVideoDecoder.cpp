#include "zanthe/images/WICAnimatedGIFVideoDecoder.h"

#include <stdexcept>
#include <utility>

#include "zanthe/images/WICAnimatedGIFLoader.h"

namespace Zanthe {

WICAnimatedGIFVideoDecoder::WICAnimatedGIFVideoDecoder(std::string path,
                                                       std::unique_ptr<WICAnimatedGIFLoader> loader)
    : m_path(std::move(path))
    , m_loader(std::move(loader)) {}

WICAnimatedGIFVideoDecoder::~WICAnimatedGIFVideoDecoder() = default;

int WICAnimatedGIFVideoDecoder::outputWidth() const {
    return m_loader->GetWidth();
}

int WICAnimatedGIFVideoDecoder::outputHeight() const {
    return m_loader->GetHeight();
}

bool WICAnimatedGIFVideoDecoder::readFrame(MediaTime time, unsigned char* buffer, double&) {
    if (!m_loader->IsInitialized()) {
        throw std::runtime_error("WICAnimatedGIFLoader failed to initialize");
    }
    const double seconds =
        static_cast<double>(time.numerator()) / static_cast<double>(time.denominator());
    m_loader->GetFrameAtTimeIntoBuffer(seconds, buffer);
    return true;
}

} // namespace Zanthe
