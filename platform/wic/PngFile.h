// PNG files of 32-bit pictures, on libpng.
#pragma once

#include <cstdint>
#include <cstdio>

namespace wic {

// Pixels of blue, green, red, alpha, the top row first.
struct BgraPicture {
    int width;  // pixels
    int height; // pixels
    int stride; // bytes from row to row, at least width * 4
    const std::uint8_t* bits;
};

// Writes the picture, 8 bits a channel with alpha, to `stream`. False when libpng refuses (over a
// million pixels a side, 4 GiB or more) or the stream takes no more; part may be written then.
//
// Thread-safety: safe from any thread, on different streams.
bool WritePng(const BgraPicture& picture, std::FILE* stream);

// The same of a picture whose colours are multiplied by their alpha. Throws std::bad_alloc.
bool WritePremultipliedPng(const BgraPicture& picture, std::FILE* stream);

} // namespace wic
