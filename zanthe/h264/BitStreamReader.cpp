#include "zanthe/h264/BitStreamReader.h"

#include <stdexcept>

namespace Zanthe {

BitStreamReader::BitStreamReader(const std::vector<unsigned char>& bytes)
    : m_bytes(bytes.data())
    , m_lengthBits(std::uint64_t{bytes.size()} * 8) {}

unsigned int BitStreamReader::BitAt(std::uint64_t index) const {
    if (index >= m_lengthBits) {
        throw std::runtime_error("invalid read index in BitStreamReader::BitAt");
    }
    return (static_cast<unsigned int>(m_bytes[index / 8]) >> (7 - index % 8)) & 1;
}

std::uint64_t BitStreamReader::ReadBits(std::int32_t count) {
    if (count <= 0) {
        return 0;
    }
    const auto bits = static_cast<std::uint64_t>(count);
    std::uint64_t value = 0;
    for (std::uint64_t i = 0; i < bits; ++i) {
        value = value << 1 | BitAt(m_position + i);
    }
    m_position += bits;
    return value;
}

std::uint32_t BitStreamReader::ReadUnsignedExpGolomb() {
    constexpr std::int32_t mostZeros = 32;
    std::int32_t zeros = 0;
    while (!ReadFlag() && zeros < mostZeros) {
        ++zeros;
    }
    return static_cast<std::uint32_t>((std::uint64_t{1} << zeros) - 1 + ReadBits(zeros));
}

std::int32_t BitStreamReader::ReadSignedExpGolomb() {
    const std::uint32_t code = ReadUnsignedExpGolomb();
    const std::int64_t half = code >> 1;
    return static_cast<std::int32_t>(code % 2 != 0 ? half + 1 : -half);
}

} // namespace Zanthe
