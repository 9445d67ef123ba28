#pragma once

#include <cstdint>
#include <vector>

// Writes bits as BitStreamReader reads them. What the last byte lacks is zero.
class BitWriter {
public:
    BitWriter& Bits(std::uint64_t value, int count) {
        for (int i = count - 1; i >= 0; --i) {
            Bit((value >> i & 1) != 0);
        }
        return *this;
    }

    BitWriter& Flag(bool value) { return Bits(value ? 1 : 0, 1); }

    // ue(v)
    BitWriter& Unsigned(std::uint32_t value) {
        const std::uint64_t code = std::uint64_t{value} + 1;
        int length = 0;
        while (code >> length > 1) {
            ++length;
        }
        return Bits(0, length).Bits(code, length + 1);
    }

    // se(v)
    BitWriter& Signed(std::int32_t value) {
        return value > 0 ? Unsigned(2 * static_cast<std::uint32_t>(value) - 1)
                         : Unsigned(2 * static_cast<std::uint32_t>(-value));
    }

    const std::vector<unsigned char>& Bytes() const { return m_bytes; }

private:
    void Bit(bool set) {
        if (m_count++ % 8 == 0) {
            m_bytes.push_back(0);
        }
        if (set) {
            m_bytes.back() |= static_cast<unsigned char>(0x80 >> (m_count - 1) % 8);
        }
    }

    std::vector<unsigned char> m_bytes;
    std::uint64_t m_count = 0;
};
