#include "tests/support/PngPicture.h"

#include <stdexcept>

#include <png.h>

PngPicture ReadPng(const std::string& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) {
        throw std::runtime_error(path + ": " + image.message);
    }
    image.format = PNG_FORMAT_BGRA;
    // Without it libpng takes 16 bits a channel for light, not for colours as they are shown.
    image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
    PngPicture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    picture.bits.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, picture.bits.data(), 0, nullptr) == 0) {
        throw std::runtime_error(path + ": " + image.message);
    }
    return picture;
}
