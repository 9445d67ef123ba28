#pragma once

#include <cstdint>
#include <vector>

// Blue, green, red, alpha; top row first, no padding.
struct BgraPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bits;
};

// How alike two pictures are, in decibels over the three colours: 100 for the same, 0 for pictures
// of different sizes. Over 40 the eye sees no difference.
double Psnr(const BgraPicture& a, const BgraPicture& b);

// The number that the clips of tests/media/make-h264 carry in the band on top of each picture; -1
// when there is none to be read.
int NumberInPicture(const BgraPicture& picture);
