// A colour of GDI+. Stands for gdipluscolor.h.
#pragma once

#include <cstdint>

namespace Gdiplus {

using ARGB = std::uint32_t; // alpha, red, green, blue from the high byte

class Color {
public:
    constexpr Color() = default; // opaque black

    constexpr explicit Color(ARGB argb)
        : m_argb(argb) {}

    constexpr Color(std::uint8_t alpha, std::uint8_t red, std::uint8_t green, std::uint8_t blue)
        : m_argb(static_cast<ARGB>(alpha) << 24 | static_cast<ARGB>(red) << 16 |
                 static_cast<ARGB>(green) << 8 | blue) {}

    constexpr std::uint8_t GetAlpha() const { return static_cast<std::uint8_t>(m_argb >> 24); }

    constexpr std::uint8_t GetRed() const { return static_cast<std::uint8_t>(m_argb >> 16); }

    constexpr std::uint8_t GetGreen() const { return static_cast<std::uint8_t>(m_argb >> 8); }

    constexpr std::uint8_t GetBlue() const { return static_cast<std::uint8_t>(m_argb); }

    constexpr ARGB GetValue() const { return m_argb; }

private:
    ARGB m_argb = 0xFF000000;
};

} // namespace Gdiplus
