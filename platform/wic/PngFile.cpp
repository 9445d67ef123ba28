#include "platform/wic/PngFile.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#include <png.h>

namespace wic {

namespace {

constexpr std::ptrdiff_t BytesPerPixel = 4;

// The colour before it was multiplied, to the nearest. A colour brighter than its alpha is no
// product of it, and comes out at full scale.
std::uint8_t Unpremultiplied(unsigned int colour, unsigned int alpha) {
    return static_cast<std::uint8_t>(std::min(255u, (colour * 255 + alpha / 2) / alpha));
}

// What cannot be seen has no colour left.
void UnpremultiplyPixel(const std::uint8_t* from, std::uint8_t* to) {
    const std::uint8_t alpha = from[3];
    for (int channel = 0; channel < 3; ++channel) {
        to[channel] = alpha != 0 ? Unpremultiplied(from[channel], alpha) : std::uint8_t{0};
    }
    to[3] = alpha;
}

void UnpremultiplyRows(const BgraPicture& picture, std::uint8_t* to) {
    for (int y = 0; y < picture.height; ++y) {
        const std::uint8_t* from = picture.bits + std::ptrdiff_t{picture.stride} * y;
        for (int x = 0; x < picture.width; ++x, from += BytesPerPixel, to += BytesPerPixel) {
            UnpremultiplyPixel(from, to);
        }
    }
}

} // namespace

bool WritePng(const BgraPicture& picture, std::FILE* stream) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.format = PNG_FORMAT_BGRA;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    // This interface catches libpng's jumps inside libpng, so that none leaves through our frames,
    // and frees what it made itself, failed or not.
    constexpr int bytesAreFinal = 0;
    return png_image_write_to_stdio(&image, stream, bytesAreFinal, picture.bits, picture.stride,
                                    nullptr) != 0;
}

bool WritePremultipliedPng(const BgraPicture& picture, std::FILE* stream) {
    const std::size_t bytes = static_cast<std::size_t>(picture.width) *
                              static_cast<std::size_t>(picture.height) * BytesPerPixel;
    const auto straight = std::make_unique_for_overwrite<std::uint8_t[]>(bytes);
    UnpremultiplyRows(picture, straight.get());
    return WritePng({picture.width, picture.height, static_cast<int>(picture.width * BytesPerPixel),
                     straight.get()},
                    stream);
}

} // namespace wic
