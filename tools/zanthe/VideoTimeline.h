// Which picture is shown when, found by reading a video once from start to end.
//
//     const VideoTimeline timeline = ReadTimeline(*video);
//     timeline.PictureAt(time)     // the number of the one to expect there
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "tools/zanthe/IVideo.h"

namespace Program {

// Times are counts of 100 ns as a reader looks for them (UnitsLookedFor).
struct TimelinePicture {
    std::int64_t first = 0; // the picture is shown at every time in [first, last] that is a
    std::int64_t last = 0;  // multiple of the timeline's step
    std::int64_t start = 0; // as its sample tells; `first` where no times are told
    std::uint64_t hash = 0;
};

class VideoTimeline {
public:
    // The distance of the readings of a video that does not tell times: pictures that stay for less
    // than 10 ms, which no screen shows, may go unseen.
    static constexpr std::int64_t Step = 100'000;
    // Such a video may stand on its last picture for ever; it has ended when nothing has changed
    // for ten seconds.
    static constexpr std::int64_t StandsStill = 100'000'000;

    std::vector<TimelinePicture> pictures; // in order; none overlap
    std::int64_t step = 1;                 // 1 where times are told, else Step
    std::int64_t end = 0;                  // the time that was asked for behind the last picture
    std::int64_t picturesEnd = 0;          // to where the last picture stays by its own duration
    bool standsStill = false; // there it still stood on that one: where it ends is not known

    // Where the linear reading itself was not as it should be: the number of the picture before.
    std::optional<std::size_t> gapBehind;    // times that no picture covers follow it
    std::optional<std::size_t> wentBackFrom; // the next picture starts before it: reading stopped

    // The number of the picture shown at `units`; nothing where that is not known.
    std::optional<std::size_t> PictureAt(std::int64_t units) const;

    // The reader tells an end before the last picture's own, and gives nothing behind that: the
    // last picture's `last` is then the end that is told.
    bool endsEarly = false;

    // Behind this there is none.
    std::int64_t LastTime() const { return pictures.empty() ? -1 : pictures.back().last; }
};

// Called before each reading with its time; may throw to stop the work.
using WatchTime = std::function<void(std::int64_t units)>;

// Throws what the video and the watch throw.
VideoTimeline ReadTimeline(IVideo& video, const WatchTime& watch = {});

// The hash of a picture's pixels (PictureHash.h).
std::uint64_t HashOf(const Picture& picture);

// The first time behind the last picture, found without reading them all where the video has an end
// or its file tells one; of any other that stands on its last picture, the time when that appears
// and a step.
std::int64_t FindEnd(IVideo& video, const WatchTime& watch = {});

} // namespace Program
