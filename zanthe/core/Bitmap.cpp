#include "zanthe/core/Bitmap.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "zanthe/core/PngEncoder.h"

namespace Zanthe {

namespace {

constexpr int BytesPerPixel = 4;
constexpr std::int64_t MaxInt = std::numeric_limits<int>::max();

// Sizes come out of files: what an int cannot count ends as any other failed allocation.
std::size_t AllocationBytes(int width, int height) {
    if (width < 0 || height < 0 || width > MaxInt / BytesPerPixel) {
        throw std::bad_array_new_length();
    }
    const std::int64_t bytes = std::int64_t{width} * BytesPerPixel * height;
    if (bytes > MaxInt) {
        throw std::bad_array_new_length();
    }
    return static_cast<std::size_t>(bytes);
}

} // namespace

Bitmap::Bitmap(int width, int height, bool preMultipliedAlpha)
    : m_width(width)
    , m_height(height)
    , m_storedStride(0)
    , m_preMultipliedAlpha(preMultipliedAlpha)
    , m_ownedBits(new unsigned char[AllocationBytes(width, height)]) {
    m_storedStride = GetStride();
}

Bitmap::Bitmap(int width, int height, bool preMultipliedAlpha,
               std::unique_ptr<unsigned char[]> bits)
    : m_width(width)
    , m_height(height)
    , m_storedStride(0)
    , m_preMultipliedAlpha(preMultipliedAlpha)
    , m_ownedBits(std::move(bits)) {}

Bitmap::Bitmap(int width, int height, bool preMultipliedAlpha, unsigned char* bits)
    : m_width(width)
    , m_height(height)
    , m_storedStride(0)
    , m_preMultipliedAlpha(preMultipliedAlpha)
    , m_borrowedBits(bits) {}

Bitmap::~Bitmap() = default;

int Bitmap::GetWidth() const {
    return m_width;
}

int Bitmap::GetHeight() const {
    return m_height;
}

int Bitmap::GetStride() const {
    const std::int64_t stride = std::int64_t{m_width} * BytesPerPixel;
    return stride >= -MaxInt && stride <= MaxInt ? static_cast<int>(stride) : 0;
}

bool Bitmap::GetPreMultipliedAlpha() const {
    return m_preMultipliedAlpha;
}

unsigned char* Bitmap::GetBits() const {
    return m_ownedBits ? m_ownedBits.get() : m_borrowedBits;
}

std::unique_ptr<unsigned char[]> Bitmap::ReleaseBits() {
    return std::move(m_ownedBits);
}

CGColorSpace* Bitmap::ColorSpace() const {
    return m_colorSpace;
}

void Bitmap::SetColorSpace(CGColorSpace* /*colorSpace*/) {}

void Bitmap::SwapRGBA_BGRA() {
    unsigned char* const bits = GetBits();
    if (bits == nullptr) {
        return;
    }
    for (int y = 0; y < m_height; ++y) {
        unsigned char* pixel = bits + std::ptrdiff_t{m_storedStride} * y;
        for (int x = 0; x < m_width; ++x, pixel += BytesPerPixel) {
            std::swap(pixel[0], pixel[2]);
        }
    }
}

bool Bitmap::ZeroOutBits() {
    unsigned char* const bits = GetBits();
    const std::int64_t bytes = std::int64_t{std::max(m_storedStride, m_width)} * m_height;
    if (bits == nullptr || bytes <= 0) {
        return false;
    }
    std::memset(bits, 0, static_cast<std::size_t>(bytes));
    return true;
}

void Bitmap::SavePNG(const std::string& filePath) const {
    const auto encoder = FindPngEncoder();
    if (!encoder) {
        throw std::runtime_error("Couldn't find png encoder");
    }
    if (!SaveWithEncoder(*this, *encoder, filePath)) {
        throw std::runtime_error("Couldn't save PNG to filePath = " + filePath);
    }
}

} // namespace Zanthe
