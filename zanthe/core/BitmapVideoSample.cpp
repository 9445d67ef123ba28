#include "zanthe/core/BitmapVideoSample.h"

#include <cstdint>
#include <limits>
#include <utility>

namespace Zanthe {

BitmapVideoSample::BitmapVideoSample(std::shared_ptr<Bitmap> bitmap)
    : m_bitmap(std::move(bitmap)) {}

BitmapVideoSample::~BitmapVideoSample() = default;

void BitmapVideoSample::decrementRefCount() {}

int BitmapVideoSample::width() const {
    return m_bitmap->GetWidth();
}

int BitmapVideoSample::height() const {
    return m_bitmap->GetHeight();
}

int BitmapVideoSample::bufferWidth() const {
    return width();
}

int BitmapVideoSample::bufferHeight() const {
    return height();
}

int BitmapVideoSample::bytesPerRow() const {
    return m_bitmap->GetStride();
}

bool BitmapVideoSample::isFlipped() const {
    return false;
}

VideoSampleFormat BitmapVideoSample::videoSampleFormat() {
    return VideoSampleFormat::SystemMemory;
}

void BitmapVideoSample::lockData() {}

unsigned char* BitmapVideoSample::data() {
    return m_bitmap->GetBits();
}

void BitmapVideoSample::unlockData() {}

int BitmapVideoSample::dataSize() {
    constexpr std::int64_t maxInt = std::numeric_limits<int>::max();
    const std::int64_t bytes = std::int64_t{bytesPerRow()} * height();
    return bytes >= -maxInt && bytes <= maxInt ? static_cast<int>(bytes) : 0;
}

CGColorSpace* BitmapVideoSample::colorSpace() const {
    return nullptr;
}

} // namespace Zanthe
