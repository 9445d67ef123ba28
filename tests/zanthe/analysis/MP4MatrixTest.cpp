#include "zanthe/analysis/MP4Matrix.h"

#include <gtest/gtest.h>

#include "tests/zanthe/analysis/Mp4Boxes.h"

namespace {

TEST(MP4Matrix, KeepsTheFourThatTurn) {
    constexpr std::int32_t one = boxes::One;
    EXPECT_EQ(MatrixFromFile({one, 2 * one, 0, 3 * one, 4 * one, 0, 5, 6, boxes::LastOne}),
              (MP4Matrix{1, 3, 2, 4}));
    EXPECT_EQ(MatrixFromFile({1, -1, 0, 0x7FFFFFFF, INT32_MIN, 0, 0, 0, boxes::LastOne}),
              (MP4Matrix{0x1p-16, 32768 - 0x1p-16, -0x1p-16, -32768}));
}

TEST(MP4Matrix, WhatIsNotAffineIsTheIdentity) {
    for (const int element : {2, 5, 8}) {
        boxes::Elements elements = boxes::Clockwise90;
        elements[static_cast<std::size_t>(element)] += 1;
        EXPECT_EQ(MatrixFromFile(elements), IdentityMatrix) << element;
    }
    boxes::Elements elements = boxes::Clockwise90;
    elements[8] = boxes::One;
    EXPECT_EQ(MatrixFromFile(elements), IdentityMatrix);
    EXPECT_NE(MatrixFromFile(boxes::Clockwise90), IdentityMatrix);
}

TEST(MP4Matrix, Multiplies) {
    EXPECT_EQ(Multiply({1, 2, 3, 4}, {5, 6, 7, 8}), (MP4Matrix{19, 22, 43, 50}));
    EXPECT_EQ(Multiply(IdentityMatrix, {5, 6, 7, 8}), (MP4Matrix{5, 6, 7, 8}));
}

} // namespace
