#include "tools/zanthe/VideoBench.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

#include "tools/zanthe/LockedPixels.h"
#include "tools/zanthe/Stopwatch.h"
#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/VideoTimeline.h"

namespace Program {

namespace {

// From one picture to the next where a video does not say how long they stay.
constexpr std::int64_t UntoldStep = UnitsPerSecond / 30;

constexpr int ScrubReach = 5; // pictures to either side

// By rank: the smallest that `share` of all do not exceed.
double Ranked(std::vector<double> values, double share) {
    if (values.empty()) {
        return 0;
    }
    std::sort(values.begin(), values.end());
    const double rank = std::ceil(share * static_cast<double>(values.size()));
    return values[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

Zanthe::WorkDone Sum(const Zanthe::WorkDone& a, const Zanthe::WorkDone& b) {
    return a - (Zanthe::WorkDone{} - b);
}

// Touches the pixels as a host does that draws them; asking for them is what converts a picture.
void ReachPixels(const Picture& picture) {
    const LockedPixels pixels(*picture.sample);
}

} // namespace

std::string_view NameOf(BenchKind kind) {
    switch (kind) {
    case BenchKind::Open:
        return "open to first picture";
    case BenchKind::Sequential:
        return "sequential";
    case BenchKind::Random:
        return "random";
    case BenchKind::Backward:
        return "backward";
    case BenchKind::ToAndFro:
        return "to and fro";
    }
    return {};
}

double BenchResult::Median() const {
    return Ranked(milliseconds, 0.5);
}

double BenchResult::Percentile95() const {
    return Ranked(milliseconds, 0.95);
}

VideoBench::VideoBench(Opening open, const BenchPlan& plan, Watch watch)
    : m_open(std::move(open))
    , m_plan(plan)
    , m_watch(std::move(watch)) {}

std::vector<BenchResult> VideoBench::Run() {
    std::vector<BenchResult> results;
    results.push_back(Open());
    results.push_back(Sequential());
    results.push_back(Random());
    results.push_back(Backward());
    results.push_back(ToAndFro());
    return results;
}

std::unique_ptr<IVideo> VideoBench::OpenOne() {
    std::unique_ptr<IVideo> video = m_open();
    m_facts = video->Facts();
    return video;
}

std::int64_t VideoBench::Length(IVideo& video) {
    if (!m_length) {
        const auto told = m_facts.duration;
        m_length = told && *told > 0 ? *told : FindEnd(video);
    }
    return *m_length;
}

std::optional<VideoBench::Shown> VideoBench::Read(BenchResult& result, IVideo& video,
                                                  std::int64_t time) {
    if (m_watch) {
        m_watch(result.kind, result.milliseconds.size());
    }
    const Zanthe::WorkDone before = Zanthe::ReadWorkCounters();
    const Stopwatch stopwatch;
    const std::optional<Picture> picture = video.At(TimeOfUnits(time));
    if (!picture) {
        return std::nullopt;
    }
    ReachPixels(*picture);
    result.milliseconds.push_back(stopwatch.Milliseconds());
    result.work = Sum(result.work, Zanthe::ReadWorkCounters() - before);
    return Shown{.time = time, .start = picture->start, .duration = picture->duration};
}

BenchResult VideoBench::Open() {
    BenchResult result{.kind = BenchKind::Open};
    for (int i = 0; i < m_plan.openings; ++i) {
        if (m_watch) {
            m_watch(result.kind, result.milliseconds.size());
        }
        const Zanthe::WorkDone before = Zanthe::ReadWorkCounters();
        const Stopwatch stopwatch;
        const std::unique_ptr<IVideo> video = OpenOne();
        if (const std::optional<Picture> picture = video->At(TimeOfUnits(0))) {
            ReachPixels(*picture);
            result.milliseconds.push_back(stopwatch.Milliseconds());
            result.work = Sum(result.work, Zanthe::ReadWorkCounters() - before);
        }
    }
    return result;
}

BenchResult VideoBench::Sequential() {
    BenchResult result{.kind = BenchKind::Sequential};
    const std::unique_ptr<IVideo> video = OpenOne();
    std::optional<std::int64_t> latest;
    std::int64_t time = 0;
    for (int i = 0; i < m_plan.sequential; ++i) {
        const std::optional<Shown> shown = Read(result, *video, time);
        if (!shown) {
            break;
        }
        if (m_facts.tellsTimes && latest == shown->start) {
            // The last picture, given once more behind its end.
            result.milliseconds.pop_back();
            break;
        }
        latest = shown->start;
        time = m_facts.tellsTimes ? *shown->start + *shown->duration + 1 : time + UntoldStep;
    }
    return result;
}

BenchResult VideoBench::Random() {
    BenchResult result{.kind = BenchKind::Random};
    const std::unique_ptr<IVideo> video = OpenOne();
    const std::int64_t length = Length(*video);
    std::mt19937_64 random(m_plan.seed);
    for (int i = 0; i < m_plan.random && length > 0; ++i) {
        Read(result, *video, std::uniform_int_distribution<std::int64_t>(0, length - 1)(random));
    }
    return result;
}

// From three quarters of the video on, where a reader that begins at the start again would show.
BenchResult VideoBench::Backward() {
    BenchResult result{.kind = BenchKind::Backward};
    const std::unique_ptr<IVideo> video = OpenOne();
    std::int64_t time = Length(*video) / 4 * 3;
    for (int i = 0; i < m_plan.backward && time >= 0; ++i) {
        const std::optional<Shown> shown = Read(result, *video, time);
        // Two units before its start is the last time of the picture before.
        time = shown && m_facts.tellsTimes ? *shown->start - 2 : time - UntoldStep;
    }
    return result;
}

BenchResult VideoBench::ToAndFro() {
    BenchResult result{.kind = BenchKind::ToAndFro};
    const std::unique_ptr<IVideo> video = OpenOne();
    const std::int64_t length = Length(*video);
    std::mt19937_64 random(m_plan.seed + 1);
    int scrubs = 0;
    while (scrubs < m_plan.scrubs && length > 0) {
        std::int64_t centre = std::uniform_int_distribution<std::int64_t>(0, length - 1)(random);
        std::int64_t picture = UntoldStep;
        for (int turn = 0; turn <= 2 * ScrubReach && scrubs < m_plan.scrubs; ++turn, ++scrubs) {
            const std::int64_t reach = (turn + 1) / 2 * (turn % 2 == 0 ? -1 : 1);
            const std::int64_t time = centre + reach * picture;
            const std::optional<Shown> shown =
                Read(result, *video, std::clamp<std::int64_t>(time, 0, length - 1));
            if (turn == 0 && shown && shown->start && shown->duration) {
                centre = *shown->start;
                picture = *shown->duration + 1;
            }
        }
    }
    return result;
}

} // namespace Program
