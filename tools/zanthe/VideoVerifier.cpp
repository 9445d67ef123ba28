#include "tools/zanthe/VideoVerifier.h"

#include <algorithm>
#include <utility>

#include "tools/zanthe/TimeText.h"

namespace Program {

namespace {

// More pictures than these are read backward in parts: going back costs more than going on, and a
// film has a hundred thousand.
constexpr std::size_t AllBackward = 2000;
constexpr std::size_t BackwardPart = 250;
constexpr std::size_t BackwardParts = 8;

constexpr int ScrubPlaces = 12;
constexpr std::int64_t ScrubReach = 6; // pictures to either side

constexpr int ReadsBehindEnd = 8;

} // namespace

std::string_view NameOf(VideoReadKind kind) {
    switch (kind) {
    case VideoReadKind::Linear:
        return "linear";
    case VideoReadKind::Random:
        return "random";
    case VideoReadKind::Backward:
        return "backward";
    case VideoReadKind::ToAndFro:
        return "to and fro";
    case VideoReadKind::Boundaries:
        return "boundaries";
    case VideoReadKind::BehindEnd:
        return "behind the end";
    }
    return {};
}

std::int64_t VideoVerification::Reads() const {
    std::int64_t reads = 0;
    for (const VideoTally& tally : tallies) {
        reads += tally.reads;
    }
    return reads;
}

std::int64_t VideoVerification::Differences() const {
    std::int64_t differences = 0;
    for (const VideoTally& tally : tallies) {
        differences += tally.differences;
    }
    return differences;
}

VideoVerifier::VideoVerifier(IVideo& video, const VideoVerifierPlan& plan, Watch watch)
    : m_video(video)
    , m_plan(plan)
    , m_watch(std::move(watch))
    , m_random(plan.seed) {
    for (int kind = 0; kind < VideoReadKinds; ++kind) {
        m_found.tallies.push_back({.kind = static_cast<VideoReadKind>(kind)});
    }
}

VideoVerification VideoVerifier::Run() {
    ReadLinearly();
    if (!m_timeline.pictures.empty()) {
        ReadAtRandom();
        ReadBackward();
        ReadToAndFro();
        ReadBoundaries();
        ReadBehindEnd();
    }
    return m_found;
}

void VideoVerifier::ReadLinearly() {
    VideoRead latest;
    m_timeline = ReadTimeline(m_video, [&](std::int64_t units) {
        latest = NextRead(VideoReadKind::Linear, TimeOfUnits(units));
    });
    m_found.pictures = static_cast<std::int64_t>(m_timeline.pictures.size());
    m_found.duration = m_timeline.picturesEnd;
    const auto note = [&](VideoDifference::What what, std::optional<std::size_t> picture) {
        if (picture) {
            const std::int64_t start =
                m_timeline.pictures.empty() ? 0 : m_timeline.pictures[*picture].start;
            Note({.what = what, .read = latest, .picture = *picture, .expectedStart = start});
        }
    };
    note(VideoDifference::What::Gap, m_timeline.gapBehind);
    note(VideoDifference::What::Order, m_timeline.wentBackFrom);
}

// Also between two units, as an editor asks whose clock does not count in them.
void VideoVerifier::ReadAtRandom() {
    constexpr std::int64_t parts = 7;
    for (std::int64_t i = 0; i < m_plan.seeks; ++i) {
        const std::int64_t step = m_timeline.step;
        const std::int64_t units = Between(0, m_timeline.LastTime() / step) * step;
        const std::int64_t part = step == 1 ? Between(0, parts - 1) : 0;
        ReadAndCompare(VideoReadKind::Random, {units * parts + part, UnitsPerSecond * parts});
    }
}

void VideoVerifier::ReadBackward() {
    const std::size_t all = m_timeline.pictures.size();
    if (all <= AllBackward) {
        ReadBackwardFrom(all - 1, 0);
        return;
    }
    for (std::size_t part = 0; part < BackwardParts; ++part) {
        const auto first =
            static_cast<std::size_t>(Between(0, static_cast<std::int64_t>(all - BackwardPart)));
        ReadBackwardFrom(first + BackwardPart - 1, first);
    }
}

void VideoVerifier::ReadBackwardFrom(std::size_t last, std::size_t first) {
    for (std::size_t picture = last + 1; picture > first; --picture) {
        ReadPicture(VideoReadKind::Backward, picture - 1);
    }
}

// As a hand on a slider: next, back, one further, back again.
void VideoVerifier::ReadToAndFro() {
    const auto last = static_cast<std::int64_t>(m_timeline.pictures.size()) - 1;
    for (int place = 0; place < ScrubPlaces; ++place) {
        const std::int64_t centre = Between(0, last);
        for (std::int64_t reach = 1; reach <= ScrubReach; ++reach) {
            for (const std::int64_t offset : {reach, -reach}) {
                ReadPicture(
                    VideoReadKind::ToAndFro,
                    static_cast<std::size_t>(std::clamp<std::int64_t>(centre + offset, 0, last)));
            }
        }
    }
}

// The last time of one picture, the first of the next, and the two after it.
void VideoVerifier::ReadBoundaries() {
    for (std::size_t picture = 1; picture < m_timeline.pictures.size(); ++picture) {
        ReadAndCompare(VideoReadKind::Boundaries,
                       TimeOfUnits(m_timeline.pictures[picture - 1].last));
        const std::int64_t first = m_timeline.pictures[picture].first;
        for (int after = 0; after < (m_timeline.step == 1 ? 3 : 1); ++after) {
            ReadAndCompare(VideoReadKind::Boundaries, TimeOfUnits(first + after));
        }
    }
}

// Behind the end that the reader tells, where it tells one: up to there it may give the last
// picture or none, and behind it none, also where the last picture would stay for longer.
void VideoVerifier::ReadBehindEnd() {
    if (m_timeline.standsStill) {
        return;
    }
    const std::int64_t told = m_video.Facts().duration.value_or(0) + 2;
    const std::int64_t end = m_timeline.endsEarly ? told : std::max(m_timeline.end, told);
    for (int i = 0; i < ReadsBehindEnd; ++i) {
        const std::int64_t gap = i < 3 ? i : Between(0, 60 * UnitsPerSecond);
        ReadAndCompare(VideoReadKind::BehindEnd, TimeOfUnits(end + gap));
    }
}

void VideoVerifier::ReadPicture(VideoReadKind kind, std::size_t picture) {
    ReadAndCompare(kind, TimeOfUnits(m_timeline.pictures[picture].start));
}

void VideoVerifier::ReadAndCompare(VideoReadKind kind, const Zanthe::MediaTime& time) {
    const VideoRead read = NextRead(kind, time);
    try {
        Compare(read, m_video.At(time));
    } catch (const std::exception& error) {
        Note({.what = VideoDifference::What::Failure, .read = read, .failure = error.what()});
    }
}

void VideoVerifier::Compare(const VideoRead& read, const std::optional<Picture>& answer) {
    const std::int64_t units = UnitsLookedFor(read.time);
    const auto expected = m_timeline.PictureAt(units);
    if (expected && answer) {
        ComparePicture(read, *expected, *answer);
    } else if (expected) {
        Note({.what = VideoDifference::What::Missing,
              .read = read,
              .picture = *expected,
              .expectedStart = m_timeline.pictures[*expected].start});
    } else if (answer && units > LastAnswer()) {
        Note({.what = VideoDifference::What::Extra, .read = read, .answeredStart = answer->start});
    }
}

// By way of double the reader may see a time a unit short, and then still within the end it tells.
std::int64_t VideoVerifier::LastAnswer() const {
    return m_timeline.LastTime() + (m_timeline.endsEarly ? 1 : 0);
}

void VideoVerifier::ComparePicture(const VideoRead& read, std::size_t expected,
                                   const Picture& answer) {
    const TimelinePicture& picture = m_timeline.pictures[expected];
    const std::uint64_t hash = HashOf(answer);
    VideoDifference difference{.read = read,
                               .picture = expected,
                               .expectedStart = picture.start,
                               .answeredStart = answer.start,
                               .expectedHash = picture.hash,
                               .answeredHash = hash};
    if (m_video.Facts().tellsTimes && answer.start != picture.start) {
        difference.what = VideoDifference::What::Time;
        Note(difference);
    } else if (hash != picture.hash) {
        const auto alike = std::find_if(m_timeline.pictures.begin(), m_timeline.pictures.end(),
                                        [&](const auto& other) { return other.hash == hash; });
        if (alike != m_timeline.pictures.end()) {
            difference.answeredPicture =
                static_cast<std::size_t>(alike - m_timeline.pictures.begin());
        }
        Note(difference);
    }
}

VideoRead VideoVerifier::NextRead(VideoReadKind kind, const Zanthe::MediaTime& time) {
    const VideoRead read{.kind = kind, .index = TallyOf(kind).reads++, .time = time};
    if (m_watch) {
        m_watch(read);
    }
    return read;
}

VideoTally& VideoVerifier::TallyOf(VideoReadKind kind) {
    return m_found.tallies[static_cast<std::size_t>(kind)];
}

void VideoVerifier::Note(const VideoDifference& difference) {
    ++TallyOf(difference.read.kind).differences;
    if (!m_found.first) {
        m_found.first = difference;
    }
}

std::int64_t VideoVerifier::Between(std::int64_t low, std::int64_t high) {
    return std::uniform_int_distribution<std::int64_t>(low, high)(m_random);
}

} // namespace Program
