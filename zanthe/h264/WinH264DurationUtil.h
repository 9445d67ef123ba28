// How long the video of an MP4 file is, by its headers.
#pragma once

#include <cstdint>
#include <string>

#include "zanthe/core/Export.h"

namespace Zanthe {

// Thread-safety: safe from any thread.
class ZANTHE_API WinH264DurationUtil {
public:
    // The duration of the first video track of the file at `path` (UTF-8), in units of 100 ns.
    // Throws std::runtime_error: "WinH264DurationUtil: error opening file" where it cannot be
    // opened or is no MP4 file, "WinH264DurationUtil: error finding video track" where it has no
    // video.
    static std::int64_t GetRefTimeDuration(const std::string& path);
};

} // namespace Zanthe
