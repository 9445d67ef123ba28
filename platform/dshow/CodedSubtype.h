// Subtypes that carry a code: a stream's four characters, or its WAVE_FORMAT tag. Stands for
// FOURCCMap of fourcc.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/com/Guid.h"

constexpr GUID CodedSubtype(std::uint32_t code) {
    return {code, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};
}

// The first four characters, little-endian; missing ones are zero.
constexpr GUID CodedSubtype(std::string_view characters) {
    std::uint32_t code = 0;
    for (std::size_t i = 0; i < 4 && i < characters.size(); ++i) {
        code |= std::uint32_t{static_cast<std::uint8_t>(characters[i])} << 8 * i;
    }
    return CodedSubtype(code);
}
