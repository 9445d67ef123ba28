#include "tools/zanthe/PictureStart.h"

#include <algorithm>

#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/VideoTimeline.h"

namespace Program {

namespace {

constexpr std::int64_t Step = VideoTimeline::Step;
constexpr std::int64_t LongestLook = 10 * UnitsPerSecond;
constexpr std::int64_t LongestBack = UnitsPerSecond / 4;

bool Shows(IVideo& video, std::int64_t time, std::uint64_t hash) {
    ThrowIfInterrupted();
    const std::optional<Picture> picture = video.At(TimeOfUnits(time));
    return picture && HashOf(*picture) == hash;
}

// Between a time at which it is not shown and one at which it is.
std::int64_t Edge(IVideo& video, std::int64_t another, std::int64_t shown, std::uint64_t hash) {
    while (shown - another > 1) {
        const std::int64_t middle = another + (shown - another) / 2;
        (Shows(video, middle, hash) ? shown : another) = middle;
    }
    return shown;
}

// Each begins where the one before says that it ends.
std::vector<std::int64_t> StartsAsTold(IVideo& video, std::size_t most) {
    std::vector<std::int64_t> starts;
    for (std::int64_t time = 0; starts.size() <= most;) {
        ThrowIfInterrupted();
        const std::optional<Picture> picture = video.At(TimeOfUnits(time));
        if (!picture || !picture->start || !picture->duration ||
            (!starts.empty() && *picture->start <= starts.back())) {
            break;
        }
        starts.push_back(*picture->start);
        time = std::max(*picture->start + *picture->duration + 1, time + 1);
    }
    return starts;
}

std::vector<std::int64_t> StartsBySight(IVideo& video, std::int64_t duration, std::size_t most) {
    std::vector<std::int64_t> starts;
    std::uint64_t before = 0;
    for (std::int64_t time = 0; time < duration && starts.size() <= most; time += Step) {
        ThrowIfInterrupted();
        const std::optional<Picture> picture = video.At(TimeOfUnits(time));
        if (!picture) {
            break;
        }
        const std::uint64_t hash = HashOf(*picture);
        if (starts.empty() || hash != before) {
            const auto told = picture->start;
            starts.push_back(told             ? *told
                             : starts.empty() ? time
                                              : Edge(video, time - Step, time, hash));
        }
        before = hash;
    }
    return starts;
}

} // namespace

std::int64_t StartOf(IVideo& video, const Picture& picture, std::int64_t time) {
    if (picture.start) {
        return *picture.start;
    }
    const std::uint64_t hash = HashOf(picture);
    for (std::int64_t back = Step; back <= LongestBack; back += Step) {
        const std::int64_t before = std::max<std::int64_t>(time - back, 0);
        if (!Shows(video, before, hash)) {
            return Edge(video, before, std::min(before + Step, time), hash);
        }
        if (before == 0) {
            return 0;
        }
    }
    return time;
}

std::vector<std::int64_t> StartsOfFew(IVideo& video, std::int64_t duration, std::size_t most) {
    const VideoFacts& facts = video.Facts();
    std::vector<std::int64_t> starts;
    if (!facts.edges.empty()) {
        starts.assign(facts.edges.begin(), std::prev(facts.edges.end()));
    } else if (facts.tellsTimes) {
        starts = StartsAsTold(video, most);
    } else if (duration <= LongestLook) {
        starts = StartsBySight(video, duration, most);
    }
    return starts.size() <= most ? starts : std::vector<std::int64_t>();
}

} // namespace Program
