// The tracks of an MP4 or QuickTime file, from its headers alone; only where these leave a
// picture's size open is the start of the file decoded.
//
//     if (const auto tracks = av::ReadTrackList(path)) for (const av::Track& track : *tracks) ...
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/av/StreamFacts.h"

namespace av {

struct Track {
    TrackKind kind = TrackKind::Other;
    std::string codec;       // the four characters of its first sample description; empty if none
    std::uint32_t width = 0; // pixels as coded; 0 where the track has no pictures
    std::uint32_t height = 0;
    std::uint64_t samples = 0; // coded samples: pictures of a video track
    std::int64_t begin = 0;    // of its first sample in the file's time, in 1 / unitsPerSecond s
    std::int64_t duration = 0; // in the same units, never negative
    std::int64_t unitsPerSecond = 1;

    // How many frames at `rate` Hz, counted from the file's time 0, begin before the track ends; 0
    // for a rate of 0 or less.
    std::uint64_t FramesAt(int rate) const;
};

// The tracks of the file at `path` (UTF-8, a regular file), in the order of the file. Of a
// fragmented file every fragment is visited, so that samples and durations are those of the whole.
// Pictures that a file carries as its cover are no tracks.
//
// Nothing where there is no such file or it is no MP4 or QuickTime file. What it refers to outside
// itself is not opened.
//
// Thread-safety: safe from any thread.
std::optional<std::vector<Track>> ReadTrackList(const std::string& path);

} // namespace av
