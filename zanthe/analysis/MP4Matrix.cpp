#include "zanthe/analysis/MP4Matrix.h"

MP4Matrix MatrixFromFile(const std::array<std::int32_t, 9>& elements) {
    constexpr std::int32_t one = 0x40000000; // the last column is 2.30
    if (elements[2] != 0 || elements[5] != 0 || elements[8] != one) {
        return IdentityMatrix;
    }
    constexpr double unit = 1.0 / 65536.0;
    return {elements[0] * unit, elements[3] * unit, elements[1] * unit, elements[4] * unit};
}

MP4Matrix Multiply(const MP4Matrix& left, const MP4Matrix& right) {
    return {left[0] * right[0] + left[1] * right[2], left[0] * right[1] + left[1] * right[3],
            left[2] * right[0] + left[3] * right[2], left[2] * right[1] + left[3] * right[3]};
}
