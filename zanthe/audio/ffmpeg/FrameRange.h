// Spans of sample frames, [start, start + length).
#pragma once

#include <cstdint>

namespace FFMPEGDecoder {

struct FrameRange {
    std::int64_t start = 0;
    std::int64_t length = 0;

    // Saturates: a span never reaches past the largest position.
    std::int64_t End() const;

    bool operator==(const FrameRange&) const = default;
};

// The frames between two positions; the empty range (0, 0) when there are none.
FrameRange RangeBetween(std::int64_t start, std::int64_t end);

// The frames that both hold; the empty range (0, 0) when there are none.
FrameRange Intersect(const FrameRange& a, const FrameRange& b);

// The smallest span that holds both.
FrameRange Unite(const FrameRange& a, const FrameRange& b);

// value * factor / divisor, truncated toward zero, with an exact product; the largest or smallest
// position when the result has no room. Requires factor >= 0 and divisor > 0.
std::int64_t ScalePosition(std::int64_t value, std::int64_t factor, std::int64_t divisor);

} // namespace FFMPEGDecoder
