// When pictures begin, for videos whose readers do not say.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/zanthe/IVideo.h"

namespace Program {

// When the picture that is shown at `time` begins, in 100 ns: as it is told, else found by reading
// back until the picture is another; `time` itself where it has stood for a quarter of a second.
// REQUIRES: video.At(time) gave `picture`. It holds no longer afterwards.
std::int64_t StartOf(IVideo& video, const Picture& picture, std::int64_t time);

// When each picture of a video begins that has `most` of them at most; nothing where it has more,
// or is too long to look. duration: of the video, in 100 ns. Throws what the video throws, and
// Interrupted.
std::vector<std::int64_t> StartsOfFew(IVideo& video, std::int64_t duration, std::size_t most);

} // namespace Program
