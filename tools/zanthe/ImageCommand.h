// zanthe image: a still picture, or the first page of a PDF document, as a PNG file.
#pragma once

#include <optional>
#include <ostream>
#include <string>

namespace Program {

// Pixels.
struct PictureSize {
    int width = 0;
    int height = 0;
};

struct ImageRequest {
    std::string file;
    int maxDimension = 4096;         // that a side of a still picture may have, pixels
    std::optional<PictureSize> size; // of a PDF page, and of nothing else
    std::string output;
    bool json = false;
};

// Writes the picture and prints what it wrote on `out`. Throws CommandError when the file cannot be
// read, is no picture, is a PDF document without a size or a picture with one, or when the output
// cannot be written.
void RunImage(const ImageRequest& request, std::ostream& out);

} // namespace Program
