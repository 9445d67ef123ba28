// From a decoded picture to pixels that a caller can use.
//
//     std::vector<std::uint8_t> rows(4 * width * height);
//     ConvertToBgra(*picture, rows.data(), 4 * width);
//
// Both conversions follow the picture's own matrix and range (ColourRulesOf). A picture on a
// graphics device is brought into memory first.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/av/Picture.h"

namespace av {

enum class ColourMatrix { Bt601, Bt709, Smpte240M, Bt2020 };
enum class ColourRange { Video, Full };

// How a picture's brightness and colour differences become red, green and blue.
struct ColourRules {
    ColourMatrix matrix = ColourMatrix::Bt601;
    ColourRange range = ColourRange::Video;

    bool operator==(const ColourRules&) const = default;
};

// What the picture says of itself. Where it is silent: BT.601 up to 720 rows and BT.709 above,
// video range; formats that are of full range by definition are so whatever is said.
ColourRules ColourRulesOf(const AVFrame& frame);

// Writes 4 bytes a pixel (blue, green, red, 255), the visible size, top row first; `stride` is the
// distance of two rows in bytes. False, with the rows undefined, for a format that nothing converts
// or when memory is short. REQUIRES: |stride| >= 4 * Width().
// Thread-safety: safe from any thread.
bool ConvertToBgra(const Picture& picture, std::uint8_t* rows, std::ptrdiff_t stride);

// Writes 8-bit brightness and, at half the size (rounded up) in both directions, interleaved colour
// differences, with `stride` bytes a row in both. Matrix and range stay the picture's own; a
// picture in RGB gets those of ColourRulesOf. Else as above. REQUIRES: stride >= Width() rounded up
// to even.
bool ConvertToNv12(const Picture& picture, std::uint8_t* luma, std::ptrdiff_t stride,
                   std::uint8_t* chroma);

// How many pictures the process has converted with the functions above.
std::int64_t PicturesConverted();

} // namespace av
