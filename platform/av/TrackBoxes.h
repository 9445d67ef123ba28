// What the boxes of an MP4 or QuickTime file say of its tracks and libavformat leaves unsaid.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace av {

struct TrackBoxes {
    std::uint32_t id = 0;                  // the number that the file gives the track
    std::string handler;                   // "soun", "vide", ...; empty where it has none
    std::vector<std::string> descriptions; // four characters of each of its sample descriptions
};

// The tracks of the first movie of the file at `path` (UTF-8), in the order of the file; none where
// it has no movie, or what stands there is cut short. Thread-safety: safe from any thread.
std::vector<TrackBoxes> ReadTrackBoxes(const std::string& path);

// Units a second by the header of the file's first movie; 0 where it has none.
// Thread-safety: safe from any thread.
std::uint32_t ReadMovieUnitsPerSecond(const std::string& path);

// Whether opening the file at `path` would take seconds or gigabytes, as that of no real one does:
// it has too many boxes, or promises many times the samples that it has bytes. Nothing of the kind:
// also where there is no such file.
//
// Thread-safety: safe from any thread.
bool IsTooCostlyToOpen(const std::string& path);

} // namespace av
