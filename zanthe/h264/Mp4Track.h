// An MP4 file, held open, and its first video track.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

#include "platform/mp4v2/Mp4v2.h"

namespace Zanthe {

struct Mp4Closer {
    using pointer = MP4FileHandle;

    void operator()(MP4FileHandle file) const { MP4Close(file, 0); }
};

// An open file, closed with its owner.
using Mp4FileOwner = std::unique_ptr<std::remove_pointer_t<MP4FileHandle>, Mp4Closer>;

// Null where the file at `path` (UTF-8) cannot be opened.
Mp4FileOwner OpenMp4File(const std::string& path);

// MP4_INVALID_TRACK_ID where there is none.
MP4TrackId FindVideoTrack(const Mp4FileOwner& file);

// `units` of which there are unitsPerSecond a second, in units of 100 ns: by way of double, with
// the fraction cut off. What 64 bits do not hold is their greatest number; 0 where both are 0.
std::int64_t ReferenceTimeOf(std::uint64_t units, std::uint64_t unitsPerSecond);

} // namespace Zanthe
