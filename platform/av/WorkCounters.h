// What a reader has done, in countable work. A promised cost is tested by these, never by a clock.
#pragma once

#include <cstdint>

namespace av {

struct WorkCounters {
    std::int64_t packetsRead = 0;
    std::int64_t framesDecoded = 0;
    std::int64_t seeks = 0;
};

} // namespace av
