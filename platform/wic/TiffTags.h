// The questions about TIFF files that libvips does not answer.
#pragma once

#include <cstdint>

#include "platform/wic/InputFile.h"

namespace wic {

// Of the first picture, the first value of each; 0 where the file does not say.
struct TiffTags {
    std::uint32_t bitsPerSample = 0;
    std::uint32_t compression = 0;
    std::uint32_t photometric = 0;
    std::uint32_t samplesPerPixel = 0;
    std::uint32_t extraSamples = 0;
};

// All 0 for BigTIFF, which the pictures asked about below are seldom put in.
TiffTags ReadTiffTags(const InputFile& file);

// Whether pixels are four bytes, red, green, blue and alpha, whose colours the file says are
// multiplied by the alpha.
bool IsPremultipliedRgba(const TiffTags& tags);

// Whether pixels are luma and chroma that no decompressor turns into red, green and blue on its
// way: libvips takes them for colours as they are.
bool IsYcbcrThatStaysSo(const TiffTags& tags);

} // namespace wic
