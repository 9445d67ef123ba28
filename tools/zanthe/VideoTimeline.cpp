#include "tools/zanthe/VideoTimeline.h"

#include <algorithm>

#include "tools/zanthe/PictureHash.h"
#include "tools/zanthe/TimeText.h"

namespace Program {

namespace {

// Videos do not get longer than this: a day.
constexpr std::int64_t LongestVideo = std::int64_t{24} * 3600 * UnitsPerSecond;

void Look(const WatchTime& watch, std::int64_t units) {
    if (watch) {
        watch(units);
    }
}

// A reader answers at the end that it tells, and never behind it.
void CutAtTold(VideoTimeline& timeline, const std::optional<std::int64_t>& told) {
    if (timeline.pictures.empty()) {
        return;
    }
    TimelinePicture& last = timeline.pictures.back();
    timeline.picturesEnd = last.last + 1;
    timeline.endsEarly = told && *told < last.last;
    if (timeline.endsEarly) {
        last.last = std::max(*told, last.first);
    }
}

VideoTimeline ReadTold(IVideo& video, const WatchTime& watch) {
    VideoTimeline timeline;
    std::vector<TimelinePicture>& pictures = timeline.pictures;
    for (std::int64_t time = 0;; time = timeline.end) {
        Look(watch, time);
        const std::optional<Picture> picture = video.At(TimeOfUnits(time));
        const std::int64_t before = pictures.empty() ? -1 : pictures.back().start;
        // A reader may answer with its last picture up to the end of the file.
        if (!picture || *picture->start == before) {
            break;
        }
        const std::int64_t start = *picture->start;
        const std::int64_t last = start + std::max<std::int64_t>(*picture->duration, 1) - 1;
        if (start < before || last < time) {
            timeline.wentBackFrom = pictures.empty() ? 0 : pictures.size() - 1;
            break;
        }
        if (!pictures.empty() && start > time && !timeline.gapBehind) {
            timeline.gapBehind = pictures.size() - 1;
        }
        // The unit before its start is the picture's too, and whatever precedes the first.
        const std::int64_t first = pictures.empty() ? 0 : std::max<std::int64_t>(start - 1, 0);
        pictures.push_back(
            {.first = first, .last = last, .start = start, .hash = HashOf(*picture)});
        timeline.end = last + 2;
    }
    CutAtTold(timeline, video.Facts().duration);
    return timeline;
}

bool Shows(IVideo& video, std::int64_t time, const WatchTime& watch) {
    Look(watch, time);
    return video.At(TimeOfUnits(time)).has_value();
}

// The first unit without a picture, between a time with one and a time without.
std::int64_t EndBetween(IVideo& video, std::int64_t shown, std::int64_t none,
                        const WatchTime& watch) {
    while (none - shown > 1) {
        const std::int64_t middle = shown + (none - shown) / 2;
        (Shows(video, middle, watch) ? shown : none) = middle;
    }
    return none;
}

VideoTimeline ReadBySteps(IVideo& video, const WatchTime& watch) {
    VideoTimeline timeline;
    timeline.step = VideoTimeline::Step;
    timeline.standsStill = true;
    std::optional<std::int64_t> none;
    std::vector<TimelinePicture>& pictures = timeline.pictures;
    for (std::int64_t time = 0; time < LongestVideo; time += timeline.step) {
        Look(watch, time);
        const std::optional<Picture> picture = video.At(TimeOfUnits(time));
        if (!picture) {
            timeline.standsStill = false;
            none = time;
            break;
        }
        const std::uint64_t hash = HashOf(*picture);
        if (pictures.empty() || pictures.back().hash != hash) {
            pictures.push_back({.first = time, .last = time, .start = time, .hash = hash});
        }
        pictures.back().last = time;
        timeline.end = time + timeline.step;
        timeline.picturesEnd = timeline.end;
        if (time - pictures.back().first >= VideoTimeline::StandsStill) {
            break;
        }
    }
    if (none && *none > 0) {
        timeline.picturesEnd = EndBetween(video, *none - timeline.step, *none, watch);
    }
    return timeline;
}

// Once each, at its begin; between two of them there is no other.
VideoTimeline ReadByEdges(IVideo& video, const WatchTime& watch) {
    const std::vector<std::int64_t>& edges = video.Facts().edges;
    VideoTimeline timeline;
    timeline.standsStill = true;
    for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
        Look(watch, edges[i]);
        const std::optional<Picture> picture = video.At(TimeOfUnits(edges[i]));
        if (!picture) {
            timeline.standsStill = false;
            break;
        }
        timeline.pictures.push_back({.first = edges[i],
                                     .last = edges[i + 1] - 1,
                                     .start = edges[i],
                                     .hash = HashOf(*picture)});
        timeline.end = timeline.picturesEnd = edges[i + 1];
    }
    return timeline;
}

} // namespace

std::optional<std::size_t> VideoTimeline::PictureAt(std::int64_t units) const {
    const auto behind = std::upper_bound(
        pictures.begin(), pictures.end(), units,
        [](std::int64_t time, const auto& picture) { return time < picture.first; });
    if (behind == pictures.begin() || units % step != 0 || units > std::prev(behind)->last) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(std::prev(behind) - pictures.begin());
}

VideoTimeline ReadTimeline(IVideo& video, const WatchTime& watch) {
    if (!video.Facts().edges.empty()) {
        return ReadByEdges(video, watch);
    }
    return video.Facts().tellsTimes ? ReadTold(video, watch) : ReadBySteps(video, watch);
}

std::uint64_t HashOf(const Picture& picture) {
    return HashOf(LockedPixels(*picture.sample));
}

std::int64_t FindEnd(IVideo& video, const WatchTime& watch) {
    if (!video.Facts().edges.empty()) {
        return video.Facts().edges.back();
    }
    if (!Shows(video, 0, watch)) {
        return 0;
    }
    std::int64_t shown = 0;
    std::int64_t none = UnitsPerSecond;
    while (Shows(video, none, watch)) {
        shown = none;
        none *= 2;
        if (none > LongestVideo) {
            const VideoTimeline timeline = ReadTimeline(video, watch);
            return timeline.pictures.back().first + VideoTimeline::Step;
        }
    }
    return EndBetween(video, shown, none, watch);
}

} // namespace Program
