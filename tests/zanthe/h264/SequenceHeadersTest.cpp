#include "zanthe/h264/SequenceHeaders.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "tests/zanthe/h264/ParameterSets.h"

namespace Zanthe {
namespace {

constexpr std::uint32_t Unknown = 0;
constexpr std::uint32_t FullRange = 1;
constexpr std::uint32_t VideoRange = 2;
constexpr std::uint32_t Bt709 = 1;
constexpr std::uint32_t Bt601 = 2;
constexpr std::uint32_t Smpte240M = 3;

ColorConversionInfo Color(std::uint32_t nominalRange, std::uint32_t matrix) {
    ColorConversionInfo color;
    color.nominalRange = nominalRange;
    color.matrix = matrix;
    return color;
}

Blob ColorSet(bool fullRange, std::optional<std::uint8_t> matrix) {
    SetOptions options;
    options.vui = ColorVui(fullRange, matrix);
    return ParameterSet(options);
}

ColorConversionInfo Parse(bool fullRange, std::optional<std::uint8_t> matrix) {
    return ParseColorInfoFromSequenceHeaders(AnnexB(ColorSet(fullRange, matrix)));
}

Blob Joined(const Blob& first, const Blob& second) {
    Blob both(first.size() + second.size());
    std::copy(second.begin(), second.end(), std::copy(first.begin(), first.end(), both.begin()));
    return both;
}

TEST(SequenceHeaders, MatrixCoefficients) {
    EXPECT_EQ(Parse(false, 1), Color(VideoRange, Bt709));
    EXPECT_EQ(Parse(false, 5), Color(VideoRange, Bt601));
    EXPECT_EQ(Parse(true, 6), Color(FullRange, Bt601));
    EXPECT_EQ(Parse(false, 7), Color(VideoRange, Smpte240M));
    for (const std::uint8_t other : {0, 2, 3, 4, 8, 9, 255}) {
        EXPECT_EQ(Parse(false, other), Color(VideoRange, Unknown)) << int{other};
        EXPECT_EQ(Parse(true, other), Color(FullRange, Unknown)) << int{other};
    }
}

TEST(SequenceHeaders, FullRangeAloneIsNotBelieved) {
    const ColorConversionInfo color = Parse(true, std::nullopt);
    EXPECT_EQ(color, Color(Unknown, Unknown));
    float unknown[3][4];
    float known[3][4];
    color.ToMatrix(unknown);
    Color(VideoRange, Bt709).ToMatrix(known);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            EXPECT_EQ(unknown[row][column], known[row][column]);
        }
    }
}

TEST(SequenceHeaders, BothStartCodes) {
    const Blob unit = ColorSet(true, 1);
    EXPECT_EQ(ParseColorInfoFromSequenceHeaders(AnnexB(unit, true)), Color(FullRange, Bt709));
    EXPECT_EQ(ParseColorInfoFromSequenceHeaders(AnnexB(unit, false)), Color(FullRange, Bt709));
}

TEST(SequenceHeaders, OnlyTheFirstUnitCounts) {
    const Blob set = AnnexB(ColorSet(true, 1));
    const Blob pictureSet{0, 0, 0, 1, 0x68, 0xCE, 0x3C, 0x80};
    EXPECT_EQ(ParseColorInfoFromSequenceHeaders(Joined(pictureSet, set)), Color(Unknown, Unknown));
    EXPECT_EQ(ParseColorInfoFromSequenceHeaders(Joined(set, pictureSet)), Color(FullRange, Bt709));
}

TEST(SequenceHeaders, AnUnreferencedSetIsPassedOver) {
    SetOptions options;
    options.vui = ColorVui(false, 1);
    for (const std::uint8_t header : {0x07, 0x87}) { // nal_ref_idc 0
        options.header = header;
        EXPECT_EQ(ParseColorInfoFromSequenceHeaders(AnnexB(ParameterSet(options))),
                  Color(Unknown, Unknown));
    }
    for (const std::uint8_t header : {0x27, 0x47, 0xE7}) { // the forbidden bit plays no part
        options.header = header;
        EXPECT_EQ(ParseColorInfoFromSequenceHeaders(AnnexB(ParameterSet(options))),
                  Color(VideoRange, Bt709));
    }
}

TEST(SequenceHeaders, WhatEndsEarlyIsUnknown) {
    const Blob whole = AnnexB(ColorSet(true, 1));
    // The last byte holds no more than the stop bit and an element behind the colour.
    for (std::size_t size = 0; size + 1 < whole.size(); ++size) {
        const Blob cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(ParseColorInfoFromSequenceHeaders(cut), Color(Unknown, Unknown)) << size;
    }
    EXPECT_EQ(ParseColorInfoFromSequenceHeaders(whole), Color(FullRange, Bt709));
}

TEST(SequenceHeaders, WithoutAUnit) {
    EXPECT_EQ(ParseColorInfoFromSequenceHeaders({}), Color(Unknown, Unknown));
    EXPECT_EQ(ParseColorInfoFromSequenceHeaders({0, 0, 1}), Color(Unknown, Unknown));
    // A length-prefixed record, which has no start code.
    EXPECT_EQ(ParseColorInfoFromSequenceHeaders({1, 66, 0, 30, 0xFF, 0xE1, 0, 4, 0x67, 66, 0, 30}),
              Color(Unknown, Unknown));
}

TEST(SequenceHeaders, EmulationPreventionIsTakenOut) {
    SetOptions options;
    options.vui = [](BitWriter& bits) {
        bits.Flag(false).Flag(false).Flag(true).Bits(5, 3).Flag(true).Flag(true);
        bits.Bits(1, 8).Bits(1, 8).Bits(7, 8).Flag(false);
        bits.Flag(true).Bits(1, 32).Bits(0x00000100, 32).Flag(true).Bits(0, 4);
    };
    const Blob unit = ParameterSet(options);
    const Blob blob = AnnexB(unit);
    ASSERT_GT(blob.size(), unit.size() + 4); // there was something to prevent
    EXPECT_EQ(ParseColorInfoFromSequenceHeaders(blob), Color(FullRange, Smpte240M));
}

} // namespace
} // namespace Zanthe
