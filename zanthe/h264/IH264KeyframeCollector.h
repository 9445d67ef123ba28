// Finds the key frames of a file's video.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zanthe/core/Export.h"

namespace Zanthe {

// Hosts call through the order of these operations: it is settled, and new ones go to the end.
class ZANTHE_API IH264KeyframeCollector {
public:
    IH264KeyframeCollector() = default;
    IH264KeyframeCollector(const IH264KeyframeCollector&) = delete;
    IH264KeyframeCollector& operator=(const IH264KeyframeCollector&) = delete;
    virtual ~IH264KeyframeCollector();

    // Fills keyFrameTimes, ascending, and duration, the end of the stream, both in units of 100 ns
    // with the first sample at 0. What they held is dropped. `path` is UTF-8; firstSampleTime is
    // the time of the stream's first sample in the file. False when they cannot be found; then
    // the two hold what each collector says.
    virtual bool CollectKeyframeTimesAndDuration(const std::string& path,
                                                 std::int64_t firstSampleTime,
                                                 std::vector<std::int64_t>& keyFrameTimes,
                                                 std::int64_t& duration) = 0;
};

} // namespace Zanthe
