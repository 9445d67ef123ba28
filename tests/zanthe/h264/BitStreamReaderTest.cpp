#include "zanthe/h264/BitStreamReader.h"

#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "tests/zanthe/h264/BitWriter.h"

namespace Zanthe {
namespace {

std::string FailureOf(const std::function<void()>& read) {
    try {
        read();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing thrown";
}

constexpr const char* OutOfRange = "invalid read index in BitStreamReader::BitAt";

TEST(BitStreamReader, TheFirstBitIsTheMostSignificant) {
    const std::vector<unsigned char> bytes{0x80, 0x01};
    const BitStreamReader bits(bytes);
    EXPECT_EQ(bits.BitAt(0), 1U);
    EXPECT_EQ(bits.BitAt(1), 0U);
    EXPECT_EQ(bits.BitAt(14), 0U);
    EXPECT_EQ(bits.BitAt(15), 1U);
    EXPECT_EQ(FailureOf([&] { bits.BitAt(16); }), OutOfRange);
    EXPECT_EQ(FailureOf([&] { bits.BitAt(~std::uint64_t{0}); }), OutOfRange);
}

TEST(BitStreamReader, FixedWidths) {
    const std::vector<unsigned char> bytes{0xA5, 0xFF, 0x00, 0xFF, 0x12, 0x34, 0x56, 0x78, 0x9A};
    BitStreamReader bits(bytes);
    EXPECT_EQ(bits.ReadBits(0), 0U);
    EXPECT_EQ(bits.ReadBits(-1), 0U);
    EXPECT_EQ(bits.ReadBits(std::numeric_limits<std::int32_t>::min()), 0U);
    EXPECT_EQ(bits.ReadBits(4), 0xAU);
    EXPECT_EQ(bits.ReadBits(1), 0U);
    EXPECT_EQ(bits.ReadBits(3), 5U);
    EXPECT_EQ(bits.ReadBits(64), 0xFF00FF123456789AU);
    EXPECT_EQ(FailureOf([&] { bits.ReadBits(1); }), OutOfRange);
}

TEST(BitStreamReader, AFailedReadLeavesTheCursor) {
    const std::vector<unsigned char> bytes{0xC3};
    BitStreamReader bits(bytes);
    bits.ReadBits(2);
    EXPECT_EQ(FailureOf([&] { bits.ReadBits(7); }), OutOfRange);
    EXPECT_EQ(bits.ReadBits(6), 3U);
}

TEST(BitStreamReader, NothingToRead) {
    const std::vector<unsigned char> bytes;
    BitStreamReader bits(bytes);
    EXPECT_EQ(bits.ReadBits(0), 0U);
    EXPECT_EQ(FailureOf([&] { bits.ReadFlag(); }), OutOfRange);
}

TEST(BitStreamReader, UnsignedCodes) {
    BitWriter writer;
    const std::vector<std::uint32_t> values{0, 1, 2, 3, 7, 254, 255, 65535, 0x7FFFFFFF, 0xFFFFFFFE};
    for (const std::uint32_t value : values) {
        writer.Unsigned(value);
    }
    BitStreamReader bits(writer.Bytes());
    for (const std::uint32_t value : values) {
        EXPECT_EQ(bits.ReadUnsignedExpGolomb(), value);
    }
}

TEST(BitStreamReader, SignedCodes) {
    BitWriter writer;
    writer.Unsigned(0).Unsigned(1).Unsigned(2).Unsigned(3).Unsigned(4);
    writer.Unsigned(0xFFFFFFFE).Unsigned(0xFFFFFFFD);
    BitStreamReader bits(writer.Bytes());
    for (const std::int32_t value : {0, 1, -1, 2, -2, -0x7FFFFFFF, 0x7FFFFFFF}) {
        EXPECT_EQ(bits.ReadSignedExpGolomb(), value);
    }
}

// 33 zeros end the count, whatever stands there, and 32 more bits are read.
TEST(BitStreamReader, ARunOfZerosEnds) {
    BitWriter writer;
    writer.Bits(0, 33).Bits(5, 32).Bits(1, 1);
    BitStreamReader bits(writer.Bytes());
    EXPECT_EQ(bits.ReadUnsignedExpGolomb(), 4U); // 2^32 - 1 + 5, cut to 32 bits
    EXPECT_TRUE(bits.ReadFlag());
}

// The greatest of all codes has no signed number of its own.
TEST(BitStreamReader, TheGreatestCodeWraps) {
    BitWriter writer;
    writer.Bits(1, 33).Bits(0, 32);
    BitStreamReader bits(writer.Bytes());
    EXPECT_EQ(bits.ReadSignedExpGolomb(), std::numeric_limits<std::int32_t>::min());
}

TEST(BitStreamReader, ACodeThatEndsEarlyThrows) {
    const std::vector<unsigned char> zeros(2);
    EXPECT_EQ(FailureOf([&] { BitStreamReader(zeros).ReadUnsignedExpGolomb(); }), OutOfRange);
    const std::vector<unsigned char> cut{0x01};
    EXPECT_EQ(FailureOf([&] { BitStreamReader(cut).ReadUnsignedExpGolomb(); }), OutOfRange);
}

} // namespace
} // namespace Zanthe
