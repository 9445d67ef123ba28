// The kind and codec of each track of an MP4 or QuickTime file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zanthe/analysis/MP4TrackType.h"

struct MP4StreamType {
    std::int32_t type = MP4TrackType::Other; // a value of MP4TrackType
    std::string codec; // four characters, as "avc1" or "png "; empty: none met

    friend bool operator==(const MP4StreamType&, const MP4StreamType&) = default;
};

// One element for each track of the file at `path`, in file order; `path` is opened as given. A
// track without a sample description repeats the codec of the track before it. Empty when the file
// cannot be opened or parsed.
//
// Thread-safety: safe from any thread, also on one file. Never throws but for memory.
std::vector<MP4StreamType> ReadMP4StreamTypes(const std::wstring& path);
