#include "zanthe/h264/ColorConversionInfo.h"

#include <algorithm>
#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/zanthe/h264/ScriptedMedia.h"

namespace Zanthe {
namespace {

using Matrix = std::array<std::array<float, 4>, 3>;

Matrix MatrixOf(std::uint32_t nominalRange, std::uint32_t matrix) {
    ColorConversionInfo color;
    color.nominalRange = nominalRange;
    color.matrix = matrix;
    float target[3][4];
    color.ToMatrix(target);
    Matrix result{};
    for (std::size_t row = 0; row < 3; ++row) {
        std::copy_n(target[row], 4, result[row].begin());
    }
    return result;
}

void ExpectNear(const Matrix& actual, const Matrix& expected) {
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column) {
            EXPECT_NEAR(actual[row][column], expected[row][column], 0.00006F)
                << row << ", " << column;
        }
    }
}

std::array<float, 3> Convert(const Matrix& m, float y, float cb, float cr) {
    std::array<float, 3> rgb{};
    for (std::size_t row = 0; row < 3; ++row) {
        rgb[row] = m[row][0] * y + m[row][1] * cb + m[row][2] * cr + m[row][3];
    }
    return rgb;
}

TEST(ColorConversionInfo, Bt709VideoRange) {
    const Matrix expected{{{1.1644F, 0.0F, 1.7927F, -0.9729F},
                           {1.1644F, -0.2132F, -0.5329F, 0.3015F},
                           {1.1644F, 2.1124F, 0.0F, -1.1334F}}};
    ExpectNear(MatrixOf(2, 1), expected);
    EXPECT_EQ(MatrixOf(0, 0), MatrixOf(2, 1)); // the unknown is that
    EXPECT_EQ(MatrixOf(2, 77), MatrixOf(2, 1));
}

TEST(ColorConversionInfo, Bt601FullRange) {
    const Matrix expected{{{1.0F, 0.0F, 1.402F, -0.701F},
                           {1.0F, -0.3441F, -0.7141F, 0.5291F},
                           {1.0F, 1.772F, 0.0F, -0.886F}}};
    ExpectNear(MatrixOf(1, 2), expected);
    EXPECT_EQ(MatrixOf(3, 2), MatrixOf(1, 2)); // 48-208 counts as full
}

TEST(ColorConversionInfo, Smpte240M) {
    const Matrix m = MatrixOf(1, 3);
    EXPECT_NEAR(m[0][2], 1.576F, 0.00001F);
    EXPECT_NEAR(m[2][1], 1.826F, 0.00001F);
    EXPECT_NEAR(m[1][1], -2 * 0.913F * 0.087F / 0.701F, 0.00001F);
    EXPECT_NEAR(m[1][2], -2 * 0.788F * 0.212F / 0.701F, 0.00001F);
}

// Black, white and grey, in every combination.
TEST(ColorConversionInfo, GreyStaysGrey) {
    for (const std::uint32_t matrix : {0U, 1U, 2U, 3U}) {
        const auto black = Convert(MatrixOf(2, matrix), 16 / 255.0F, 128 / 255.0F, 128 / 255.0F);
        const auto white = Convert(MatrixOf(2, matrix), 235 / 255.0F, 128 / 255.0F, 128 / 255.0F);
        const auto grey = Convert(MatrixOf(1, matrix), 0.4F, 0.5F, 0.5F);
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(black[i], 0.0F, 0.00001F);
            EXPECT_NEAR(white[i], 1.0F, 0.00001F);
            EXPECT_NEAR(grey[i], 0.4F, 0.00001F);
        }
    }
}

TEST(ColorConversionInfo, TravelsWithASample) {
    const auto sample = com::MakeOwned<ScriptedSample>(0, 1);
    ColorConversionInfo color;
    color.nominalRange = 1;
    color.matrix = 3;
    color.AttachToSample(sample.Get());
    UINT32 value = 0;
    EXPECT_EQ(sample->GetUINT32(MF_MT_YUV_MATRIX, &value), S_OK);
    EXPECT_EQ(value, 3U);
    EXPECT_EQ(sample->GetUINT32(MF_MT_VIDEO_NOMINAL_RANGE, &value), S_OK);
    EXPECT_EQ(value, 1U);
    EXPECT_EQ(ColorConversionInfo(sample.Get()), color);
}

TEST(ColorConversionInfo, ASampleThatTakesNoMatrixGetsTheRangeAllTheSame) {
    const auto sample = com::MakeOwned<ScriptedSample>(0, 1);
    sample->setsToFail = 1;
    ColorConversionInfo color;
    color.nominalRange = 1;
    color.matrix = 3;
    color.AttachToSample(sample.Get());
    EXPECT_THAT(sample->keysSet, testing::ElementsAre(MF_MT_YUV_MATRIX, MF_MT_VIDEO_NOMINAL_RANGE));
    EXPECT_EQ(ColorConversionInfo(sample.Get()).nominalRange, 1U);
}

TEST(ColorConversionInfo, WhatASampleLacksIsUnknown) {
    const auto sample = com::MakeOwned<ScriptedSample>(0, 1);
    EXPECT_EQ(ColorConversionInfo(sample.Get()), ColorConversionInfo());
    sample->SetUINT32(MF_MT_VIDEO_NOMINAL_RANGE, 2);
    const ColorConversionInfo color(sample.Get());
    EXPECT_EQ(color.matrix, 0U);
    EXPECT_EQ(color.nominalRange, 2U);
    sample->SetUINT64(MF_MT_YUV_MATRIX, 1); // of another type
    EXPECT_EQ(ColorConversionInfo(sample.Get()).matrix, 0U);
}

TEST(ColorConversionInfo, NoSample) {
    EXPECT_EQ(ColorConversionInfo(nullptr), ColorConversionInfo());
    ColorConversionInfo().AttachToSample(nullptr);
}

} // namespace
} // namespace Zanthe
