// Any bytes as the headers of an H.264 stream. What comes out is a colour that the parser can tell,
// and it makes a matrix of numbers.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "zanthe/h264/SequenceHeaders.h"

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto color =
        Zanthe::ParseColorInfoFromSequenceHeaders(std::vector<unsigned char>(data, data + size));
    Require(color.matrix <= 3 && color.nominalRange <= 2);
    Require(color.matrix == 0 || color.nominalRange != 0);
    float matrix[3][4];
    color.ToMatrix(matrix);
    for (const auto& row : matrix) {
        for (const float value : row) {
            Require(std::isfinite(value));
        }
    }
    return 0;
}
