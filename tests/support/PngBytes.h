// PNG files put together by hand.
#pragma once

#include <string>
#include <string_view>

struct PngShape {
    int width = 0;
    int height = 0;
    int colourType = 6; // 0 grey, 2 colour, 3 indexed, 4 grey and alpha, 6 colour and alpha
    int depth = 8;      // bits a channel
};

std::string PngChunk(std::string_view type, const std::string& content);

// A whole file. `rows` are the bytes of all rows, each unfiltered; fewer are cut off. `chunks`
// stand before the pixels.
std::string PngBytes(const PngShape& shape, const std::string& rows,
                     const std::string& chunks = "");
