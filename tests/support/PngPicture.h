#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The pixels of a PNG file as libpng reads them: blue, green, red, alpha, not premultiplied.
struct PngPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bits;
};

// Throws std::runtime_error when there is no such file or it is no PNG.
PngPicture ReadPng(const std::string& path);
