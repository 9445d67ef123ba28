#include "tools/zanthe/LockedPixels.h"

#include <cstdint>
#include <cstdlib>
#include <stdexcept>

namespace Program {

namespace {

constexpr int BytesPerPixel = 4;

} // namespace

LockedPixels::LockedPixels(Zanthe::VideoSample& sample)
    : m_sample(sample)
    , m_width(sample.width())
    , m_height(sample.height()) {
    if (sample.videoSampleFormat() == Zanthe::VideoSampleFormat::GraphicsDevice) {
        throw std::runtime_error("the picture lies on the graphics device, out of reach");
    }
    sample.lockData();
    try {
        Measure();
    } catch (...) {
        sample.unlockData();
        throw;
    }
}

LockedPixels::~LockedPixels() {
    m_sample.unlockData();
}

void LockedPixels::Measure() {
    const unsigned char* data = m_sample.data();
    const std::int64_t pitch = std::abs(std::int64_t{m_sample.bytesPerRow()});
    const std::int64_t rowBytes = std::int64_t{m_width} * BytesPerPixel;
    if (data == nullptr || m_width <= 0 || m_height <= 0 || pitch < rowBytes ||
        pitch * (m_height - 1) + rowBytes > m_sample.dataSize()) {
        throw std::runtime_error("the picture has fewer bytes than its size asks for");
    }
    const bool flipped = m_sample.isFlipped() != (m_sample.bytesPerRow() < 0);
    m_top = flipped ? data + pitch * (m_height - 1) : data;
    m_pitch = static_cast<long>(flipped ? -pitch : pitch);
}

const unsigned char* LockedPixels::Row(int y) const {
    return m_top + m_pitch * y;
}

} // namespace Program
