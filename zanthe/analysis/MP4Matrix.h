// The part of an MP4 display transform that turns, mirrors and scales.
#pragma once

#include <array>
#include <cstdint>

// A row-major 2 by 2 matrix. Of the nine elements m[0] to m[8] of a file these are, in order, m[0],
// m[3], m[1], m[4].
using MP4Matrix = std::array<double, 4>;

inline constexpr MP4Matrix IdentityMatrix{1.0, 0.0, 0.0, 1.0};

// The matrix of a file's nine integers: those kept are 16.16 fixed-point numbers. The translation
// m[6], m[7] is ignored. The identity when the transform is not an affine one, that is unless m[2]
// and m[5] are zero and m[8] is 1.0 (in 2.30, 0x40000000).
//
// Thread-safety: safe from any thread, as is Multiply.
MP4Matrix MatrixFromFile(const std::array<std::int32_t, 9>& elements);

// The product left * right.
MP4Matrix Multiply(const MP4Matrix& left, const MP4Matrix& right);
