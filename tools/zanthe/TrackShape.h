// How the pictures of one track are to be shown, where a file has several.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "zanthe/analysis/FileClassification.h"

namespace Program {

struct TrackShape {
    std::int32_t width = 0; // pixels, as the track's header has them, before turning; 0: not told
    std::int32_t height = 0;
    int rotation = 0; // clockwise turn that a picture needs: 0, 90, 180, 270
};

// Of track `index`, all tracks counted from 0. The library's own answer is that of the last track
// of pictures, whichever is read. Nothing where it has none, or there is no such track.
std::optional<TrackShape> ShapeOf(const Zanthe::FileClassification& file, std::size_t index);

} // namespace Program
