#include "zanthe/audio/ffmpeg/FrameRange.h"

#include <algorithm>
#include <limits>

namespace FFMPEGDecoder {

namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

} // namespace

std::int64_t FrameRange::End() const {
    std::int64_t end = 0;
    return __builtin_add_overflow(start, length, &end) ? kLargest : end;
}

FrameRange RangeBetween(std::int64_t start, std::int64_t end) {
    if (end <= start) {
        return {};
    }
    std::int64_t length = 0;
    return {start, __builtin_sub_overflow(end, start, &length) ? kLargest : length};
}

FrameRange Intersect(const FrameRange& a, const FrameRange& b) {
    return RangeBetween(std::max(a.start, b.start), std::min(a.End(), b.End()));
}

FrameRange Unite(const FrameRange& a, const FrameRange& b) {
    return RangeBetween(std::min(a.start, b.start), std::max(a.End(), b.End()));
}

std::int64_t ScalePosition(std::int64_t value, std::int64_t factor, std::int64_t divisor) {
    __extension__ using Wide = __int128;
    const Wide scaled = static_cast<Wide>(value) * factor / divisor;
    return static_cast<std::int64_t>(
        std::clamp(scaled, static_cast<Wide>(kSmallest), static_cast<Wide>(kLargest)));
}

} // namespace FFMPEGDecoder
