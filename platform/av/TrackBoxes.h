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

// Whether the file at `path` has so many boxes that walking them all would take seconds, as no
// real one has. Nothing of the kind: also where there is no such file.
//
// Thread-safety: safe from any thread.
bool HasTooManyBoxes(const std::string& path);

} // namespace av
