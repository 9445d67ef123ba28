// How much the library has worked, in countable steps: for benches and for the curious.
//
//     const WorkDone before = ReadWorkCounters();
//     ...
//     const WorkDone work = ReadWorkCounters() - before;
//     work.picturesDecoded      // a clock would say less: it drifts from run to run
#pragma once

#include <cstdint>

#include "zanthe/core/Export.h"

namespace Zanthe {

struct WorkDone {
    std::int64_t packetsRead = 0;       // coded pictures taken from files
    std::int64_t picturesDecoded = 0;   // pictures that a decoder handed out
    std::int64_t picturesConverted = 0; // of those, turned into the pixels that a host gets
    std::int64_t seeks = 0;             // jumps within a file

    friend bool operator==(const WorkDone&, const WorkDone&) = default;

    friend WorkDone operator-(const WorkDone& later, const WorkDone& earlier) {
        return {later.packetsRead - earlier.packetsRead,
                later.picturesDecoded - earlier.picturesDecoded,
                later.picturesConverted - earlier.picturesConverted, later.seeks - earlier.seeks};
    }
};

// What all readers of video in this process have done since it began; they need not be alive.
//
// Thread-safety: safe from any thread. While another thread reads, the numbers may be of slightly
// different moments.
ZANTHE_API WorkDone ReadWorkCounters();

} // namespace Zanthe
