// The questions about TIFF files that libvips does not answer.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/wic/InputFile.h"

namespace wic {

// Of the first picture, of TIFF and of BigTIFF.
struct TiffTags {
    struct Value {
        std::uint64_t first = 0; // of the tag's values; 0 where the file does not say
        std::uint64_t place = 0; // of the first value in the file; 0 where there is none
        int bytes = 0;           // of a value
    };

    bool bigEndian = false;
    Value bitsPerSample;
    Value compression;
    Value photometric;
    Value samplesPerPixel;
    Value rowsPerStrip;
    Value planarConfiguration;
    Value extraSamples;
};

// Bytes that are to be read in the place of those in the file.
struct FilePatch {
    std::int64_t offset = 0;
    std::size_t count = 0; // 0: the file is read as it is
    std::array<std::uint8_t, 8> bytes{};
};

TiffTags ReadTiffTags(const InputFile& file);

// Whether pixels are red, green, blue and alpha, or gray and alpha, of 8 or 16 bits each, and the
// file says that the colours are multiplied by the alpha.
bool IsPremultiplied(const TiffTags& tags);

// The same of red, green, blue and alpha of 8 bits alone.
bool IsPremultipliedRgba(const TiffTags& tags);

// Whether pixels are luma and chroma that no decompressor turns into red, green and blue on its
// way: libvips takes them for colours as they are.
bool IsYcbcrThatStaysSo(const TiffTags& tags);

// The rows of a picture of this height that libvips holds at once, all their values: a strip where
// each value has a plane of its own, to put the planes together, else one.
std::uint64_t RowsHeldOf(const TiffTags& tags, std::uint64_t height);

// What makes the colours of a premultiplied file come as they are stored: libvips would divide them
// by their alpha, and cut off what is left over.
FilePatch WithoutAssociation(const TiffTags& tags);

} // namespace wic
