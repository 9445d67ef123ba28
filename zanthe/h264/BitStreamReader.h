// A cursor over the bits of a byte buffer, with the two codings that video headers are written in.
//
//     BitStreamReader bits(unit);
//     const auto profile = bits.ReadBits(8);
//     const std::uint32_t width = bits.ReadUnsignedExpGolomb();
#pragma once

#include <cstdint>
#include <vector>

namespace Zanthe {

// Bit 0 is the most significant bit of byte 0. A read that would leave the buffer throws
// std::runtime_error with "invalid read index in BitStreamReader::BitAt".
//
// Thread-safety: none.
class BitStreamReader {
public:
    // Reads `bytes` from its first bit on; the vector outlives the reader and stays as it is.
    explicit BitStreamReader(const std::vector<unsigned char>& bytes);

    // The bit at `index`, 0 or 1, wherever the cursor stands.
    unsigned int BitAt(std::uint64_t index) const;

    // The next `count` bits, at most 64, the first one read as the most significant; 0, with
    // nothing read, for a count of 0 or less. When it throws the cursor stays where it was.
    std::uint64_t ReadBits(std::int32_t count);

    bool ReadFlag() { return ReadBits(1) != 0; }

    // ue(v) of ISO/IEC 14496-10: as many zeros as bits follow the first one. A run of zeros counts
    // up to 32; the bit behind it then passes for the one, whatever it is.
    std::uint32_t ReadUnsignedExpGolomb();

    // se(v): the codes 0, 1, 2, 3, 4 ... stand for 0, 1, -1, 2, -2 ...
    std::int32_t ReadSignedExpGolomb();

private:
    const unsigned char* m_bytes;
    std::uint64_t m_lengthBits;
    std::uint64_t m_position = 0; // in bits
};

} // namespace Zanthe
