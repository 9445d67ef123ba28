#include "tools/zanthe/VideoEnd.h"

#include <algorithm>

#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/VideoTimeline.h"

namespace Program {

namespace {

constexpr std::int64_t Millisecond = UnitsPerSecond / 1000;
// Headers count in whole ticks, and often leave out or add a picture's time.
constexpr std::int64_t Worth = UnitsPerSecond / 10;

std::optional<std::int64_t> EndOfPictureAt(IVideo& video, std::int64_t time) {
    const std::optional<Picture> picture = video.At(TimeOfUnits(time));
    if (!picture || !picture->start || !picture->duration) {
        return std::nullopt;
    }
    return *picture->start + *picture->duration;
}

// Asks between times with a picture and times without one.
std::optional<std::int64_t> SearchEnd(IVideo& video) {
    const std::int64_t none = FindEnd(video, [](std::int64_t) { ThrowIfInterrupted(); });
    if (none <= 0) {
        return std::nullopt;
    }
    const auto end = EndOfPictureAt(video, none - 1);
    return end ? end : none;
}

} // namespace

std::string Disagreement(const VideoEnd& end) {
    if (!end.told || !end.pictures) {
        return {};
    }
    const std::int64_t more = *end.told - *end.pictures;
    if (more <= -Millisecond) {
        return "the header's duration ends the stream at " + ClockText(*end.told) + ", " +
               std::to_string((-more + Millisecond / 2) / Millisecond) +
               " ms before its last picture's end: nothing is shown behind that";
    }
    if (more >= Worth) {
        return "the header promises " + ClockText(*end.told) + ", but the last picture ends at " +
               ClockText(*end.pictures) + ": the file may be cut short";
    }
    return {};
}

VideoEnd FindVideoEnd(IVideo& video) {
    VideoEnd end{.told = video.Facts().duration};
    if (end.told) {
        // At the end itself a reader may give its last picture or none.
        end.pictures = EndOfPictureAt(video, *end.told);
        if (!end.pictures) {
            end.pictures = EndOfPictureAt(video, std::max<std::int64_t>(*end.told - 2, 0));
        }
    }
    if (!end.pictures) {
        end.pictures = SearchEnd(video);
    }
    return end;
}

std::string DescribeEnd(IVideo& video) {
    const VideoEnd end = FindVideoEnd(video);
    if (std::string disagreement = Disagreement(end); !disagreement.empty()) {
        return disagreement;
    }
    if (end.pictures) {
        return "its last picture ends at " + ClockText(*end.pictures);
    }
    return end.told ? "its header ends it at " + ClockText(*end.told) : "";
}

} // namespace Program
