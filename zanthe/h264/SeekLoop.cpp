#include "zanthe/h264/SeekLoop.h"

#include <algorithm>
#include <functional>

namespace Zanthe {

namespace {

// Whether the newest entries of `log`, `count` of them at most, are such that even(entry) holds for
// the newest and every second one before it, and odd(entry) for those in between.
template <typename Entry, typename Even, typename Odd>
bool NewestAlternate(const std::deque<Entry>& log, std::size_t count, Even even, Odd odd) {
    const std::size_t looked = std::min(count, log.size());
    for (std::size_t i = 0; i < looked; ++i) {
        const Entry& entry = log[log.size() - 1 - i];
        if (!(i % 2 == 0 ? even(entry) : odd(entry))) {
            return false;
        }
    }
    return true;
}

bool AllEqual(const std::deque<std::int64_t>& values) {
    return std::adjacent_find(values.begin(), values.end(), std::not_equal_to<>()) == values.end();
}

bool OnlySeeksBackwardAndReads(const std::deque<ReadSampleOp>& operations) {
    return NewestAlternate(
        operations, SeekLoopTargets,
        [](ReadSampleOp op) { return op == ReadSampleOp::ReadNextSample; },
        [](ReadSampleOp op) { return op == ReadSampleOp::SeekBackward; });
}

bool TimesAlternate(const std::deque<std::int64_t>& times) {
    constexpr std::size_t looked = 20;
    if (times.size() < 2) {
        return true;
    }
    const std::int64_t newest = times.back();
    const std::int64_t before = times[times.size() - 2];
    return NewestAlternate(
        times, looked, [newest](std::int64_t time) { return time == newest; },
        [before](std::int64_t time) { return time == before; });
}

} // namespace

bool IsStuckInSeekLoop(const std::deque<std::int64_t>& seekTargets,
                       const std::deque<ReadSampleOp>& operations,
                       const std::deque<std::int64_t>& sampleTimes) {
    if (seekTargets.size() != SeekLoopTargets || operations.size() < SeekLoopTargets) {
        return false;
    }
    return (AllEqual(seekTargets) && OnlySeeksBackwardAndReads(operations)) ||
           TimesAlternate(sampleTimes);
}

} // namespace Zanthe
