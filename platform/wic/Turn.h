// Quarter turns and mirrors, composed.
#pragma once

#include <cstddef>

#include "platform/wic/WinCodec.h"

namespace wic {

struct PixelPlace {
    std::size_t x;
    std::size_t y;
};

// One of the eight ways to lay a rectangle down: left and right exchanged, perhaps, and then a
// rotation clockwise by quarter turns.
class Turn {
public:
    Turn() = default;

    static Turn Of(WICBitmapTransformOptions options) {
        const auto bits = static_cast<unsigned int>(options);
        Turn turn(0, (bits & WICBitmapTransformFlipHorizontal) != 0);
        if ((bits & WICBitmapTransformFlipVertical) != 0) {
            turn = turn.Then(Turn(2, true)); // top and bottom exchanged
        }
        return turn.Then(Turn(bits & 3U, false));
    }

    // This one, and `next` after it.
    Turn Then(const Turn& next) const {
        // A mirror reverses the sense of the rotation before it.
        const unsigned int before = next.m_mirrored ? 4 - m_quarters : m_quarters;
        return Turn((before + next.m_quarters) & 3U, m_mirrored != next.m_mirrored);
    }

    bool IsNone() const { return m_quarters == 0 && !m_mirrored; }

    bool SwapsSides() const { return (m_quarters & 1U) != 0; }

    // Where the pixel at `from` of a picture of width by height comes to lie.
    PixelPlace Place(PixelPlace from, std::size_t width, std::size_t height) const {
        if (m_mirrored) {
            from.x = width - 1 - from.x;
        }
        switch (m_quarters) {
        case 1:
            return {height - 1 - from.y, from.x};
        case 2:
            return {width - 1 - from.x, height - 1 - from.y};
        case 3:
            return {from.y, width - 1 - from.x};
        default:
            return from;
        }
    }

private:
    Turn(unsigned int quarters, bool mirrored)
        : m_quarters(quarters)
        , m_mirrored(mirrored) {}

    unsigned int m_quarters = 0; // 0 to 3
    bool m_mirrored = false;
};

} // namespace wic
