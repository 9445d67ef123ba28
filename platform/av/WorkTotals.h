// The work of all readers of this process together, for tools that look at it from outside.
//
//     WorkTotals().picturesDecoded.fetch_add(1, std::memory_order_relaxed);
//
// Conversions are counted where they are done (PicturesConverted).
#pragma once

#include <atomic>
#include <cstdint>

namespace av {

// Only grows. Thread-safety: safe from any thread; each number stands for itself.
struct WorkTotal {
    std::atomic<std::int64_t> packetsRead = 0;
    std::atomic<std::int64_t> picturesDecoded = 0;
    std::atomic<std::int64_t> seeks = 0;
};

// The process's one.
WorkTotal& WorkTotals();

} // namespace av
