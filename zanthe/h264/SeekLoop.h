// Recognises a search that gets nowhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "zanthe/h264/ReadSampleOp.h"

namespace Zanthe {

// So many seeks are looked at; a log of them holds no more.
inline constexpr std::size_t SeekLoopTargets = 10;

// Whether the logs, oldest entry first, are those of a reader that will not get to its target: for
// a time that no sample covers, and for sources that land on one key frame again and again. Not
// before SeekLoopTargets seeks; then when
//   - all went to one target, and what was done last is a seek backward and a read, in turn, as far
//     back as SeekLoopTargets entries; or
//   - of the last 20 sample times every other one is the same, and so are those in between.
bool IsStuckInSeekLoop(const std::deque<std::int64_t>& seekTargets,
                       const std::deque<ReadSampleOp>& operations,
                       const std::deque<std::int64_t>& sampleTimes);

} // namespace Zanthe
