// What a reader has done, in countable work. A promised cost is tested by these, never by a clock.
// What PictureConversion.h does is counted there.
#pragma once

#include <cstdint>

namespace av {

struct WorkCounters {
    std::int64_t packetsRead = 0;   // of the stream that is read
    std::int64_t framesDecoded = 0; // that came out of the decoder, handed on or not
    std::int64_t seeks = 0;         // in the file, one request may need several
};

} // namespace av
