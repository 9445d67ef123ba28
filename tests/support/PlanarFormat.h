#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/BgraPicture.h"

// One of FFmpeg's planar pixel formats, as its program writes them: plane after plane, no padding.
struct PlanarFormat {
    int planes = 3;
    int depth = 8;     // bits; stored in two bytes above 8, lowest first
    int shiftX = 0;    // of the planes of colour: log2 of how many columns share a value
    int shiftY = 0;    // and rows
    bool rgb = false;  // planes are green, blue, red
    bool full = false; // of full range by definition

    // By FFmpeg's name: yuv, yuvj, gray, gbrp in all shapes and depths.
    static std::optional<PlanarFormat> Named(const std::string& name);

    int BytesPerValue() const { return depth > 8 ? 2 : 1; }

    int PlaneWidth(int plane, int width) const;
    int PlaneHeight(int plane, int height) const;
    std::size_t PlaneBytes(int plane, int width, int height) const;
    std::size_t PictureBytes(int width, int height) const;
};

// What the ffmpeg program says of a picture's colour: "bt709", "tv", "unknown" ...
struct ColourWords {
    std::string matrix;
    std::string range;
};

// Each value of colour stands for all pixels it was sampled for.
BgraPicture ConvertPlanar(const PlanarFormat& format, const ColourWords& words,
                          const std::vector<std::uint8_t>& raw, int width, int height);
