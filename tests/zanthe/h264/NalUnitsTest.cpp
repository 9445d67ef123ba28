#include "zanthe/h264/NalUnits.h"

#include <gtest/gtest.h>

namespace Zanthe {
namespace {

using Bytes = std::vector<unsigned char>;
using Units = std::vector<Bytes>;

TEST(NalUnits, ShortAndLongStartCodes) {
    EXPECT_EQ(SplitNalUnits({0, 0, 1, 0x67, 9}), (Units{{0x67, 9}}));
    EXPECT_EQ(SplitNalUnits({0, 0, 0, 1, 0x67, 9}), (Units{{0x67, 9}}));
}

TEST(NalUnits, TheZeroOfALongStartCodeStaysWithTheUnitBefore) {
    EXPECT_EQ(SplitNalUnits({0, 0, 1, 0x67, 0, 0, 0, 1, 0x68}), (Units{{0x67, 0}, {0x68}}));
    EXPECT_EQ(SplitNalUnits({0, 0, 1, 0x67, 0, 0, 1, 0x68}), (Units{{0x67}, {0x68}}));
}

TEST(NalUnits, WhatStandsAheadIsDropped) {
    EXPECT_EQ(SplitNalUnits({7, 0, 0, 3, 8, 0, 0, 1, 0x67}), (Units{{0x67}}));
    EXPECT_EQ(SplitNalUnits({1, 100, 0, 31, 0xFF}), Units{});
    EXPECT_EQ(SplitNalUnits({}), Units{});
    EXPECT_EQ(SplitNalUnits({0, 0}), Units{});
}

TEST(NalUnits, AnEscapedStartCodeIsNone) {
    EXPECT_EQ(SplitNalUnits({0, 0, 1, 9, 0, 0, 3, 1, 8}), (Units{{9, 0, 0, 1, 8}}));
    EXPECT_EQ(SplitNalUnits({0, 0, 1, 9, 0, 0, 3, 0, 0, 3, 3}), (Units{{9, 0, 0, 0, 0, 3}}));
}

// Both need a byte behind them to be looked at in full.
TEST(NalUnits, TheLastTwoBytesAreOnlyBytes) {
    EXPECT_EQ(SplitNalUnits({0, 0, 1, 9, 0, 0}), (Units{{9, 0, 0}}));
    EXPECT_EQ(SplitNalUnits({0, 0, 1}), (Units{{}}));
    EXPECT_EQ(SplitNalUnits({0, 0, 1, 0, 0, 1}), (Units{{}, {}}));
    EXPECT_EQ(SplitNalUnits({0, 0, 1, 9, 0, 0, 3}), (Units{{9, 0, 0}}));
}

} // namespace
} // namespace Zanthe
