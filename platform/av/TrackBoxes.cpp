#include "platform/av/TrackBoxes.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/av/Mp4Boxes.h"

namespace av {

namespace {

constexpr std::uint64_t VersionAndFlags = 4;

// The first of that type in `parent`.
std::optional<Mp4Box> Find(Mp4Boxes& boxes, const Mp4Box& parent, std::string_view type) {
    std::optional<Mp4Box> found;
    boxes.ForEach(parent.payload, [&](const Mp4Box& box) {
        if (box.type == type) {
            found = box;
        }
        return !found;
    });
    return found;
}

std::optional<Mp4Box> FindBelow(Mp4Boxes& boxes, Mp4Box box,
                                std::initializer_list<std::string_view> types) {
    for (const std::string_view type : types) {
        const auto child = Find(boxes, box, type);
        if (!child) {
            return std::nullopt;
        }
        box = *child;
    }
    return box;
}

// What stands behind the two times of a header, which are of 64 bits in version 1; 0 where there is
// no such header.
std::uint32_t NumberBehindTimes(Mp4Boxes& boxes, const Mp4Box& parent, std::string_view type) {
    const auto header = Find(boxes, parent, type);
    if (!header) {
        return 0;
    }
    const std::uint64_t start = header->payload.start;
    const std::uint64_t times = boxes.Number(start, 1) == 0U ? 2 * 4 : 2 * 8;
    const auto number = boxes.Number(start + VersionAndFlags + times, 4);
    return static_cast<std::uint32_t>(number.value_or(0));
}

std::string HandlerOf(Mp4Boxes& boxes, const Mp4Box& track) {
    const auto handler = FindBelow(boxes, track, {"mdia", "hdlr"});
    constexpr std::uint64_t componentType = 4;
    return handler ? boxes.FourCharacters(handler->payload.start + VersionAndFlags + componentType)
                         .value_or("")
                   : std::string();
}

std::vector<std::string> DescriptionsOf(Mp4Boxes& boxes, const Mp4Box& track) {
    std::vector<std::string> descriptions;
    if (const auto table = FindBelow(boxes, track, {"mdia", "minf", "stbl", "stsd"})) {
        constexpr std::uint64_t count = 4;
        const Mp4Range& payload = table->payload;
        boxes.ForEach({payload.start + VersionAndFlags + count, payload.end},
                      [&](const Mp4Box& box) {
                          descriptions.push_back(box.type);
                          return true;
                      });
    }
    return descriptions;
}

// Those that are made of boxes, as far as anybody looks into them when the file is opened.
bool IsContainer(const Mp4Box& box) {
    constexpr std::array<std::string_view, 14> containers{"moov", "trak", "mdia", "minf", "stbl",
                                                          "dinf", "edts", "udta", "meta", "ilst",
                                                          "mvex", "moof", "traf", "tref"};
    return std::find(containers.begin(), containers.end(), box.type) != containers.end();
}

// How many samples the box promises without telling anything of each: room for all of them is made
// when the file is opened, whether it can hold them or not.
std::uint64_t SamplesPromised(Mp4Boxes& boxes, const Mp4Box& box) {
    constexpr std::uint64_t oneSize = 4;
    const std::uint64_t behindFlags = box.payload.start + VersionAndFlags;
    if (box.type == "trun") {
        return boxes.Number(behindFlags, 4).value_or(0);
    }
    const bool isTable = box.type == "stsz" || box.type == "stz2";
    return isTable ? boxes.Number(behindFlags + oneSize, 4).value_or(0) : 0;
}

// What opening a file costs beside reading it.
class OpeningCost {
public:
    explicit OpeningCost(Mp4Boxes& boxes)
        : m_boxes(boxes)
        , m_mostBoxes(MostBoxes(boxes.Size()))
        , m_mostSamples(MostSamples(boxes.Size())) {}

    // Walks the boxes down to `depth`, as long as they are not too many.
    void Add(const Mp4Range& range, int depth) {
        m_boxes.ForEach(range, [&](const Mp4Box& box) {
            m_samples += SamplesPromised(m_boxes, box);
            if (depth > 1 && IsContainer(box)) {
                Add(box.payload, depth - 1);
            }
            return !IsTooMuch();
        });
    }

    bool IsTooMuch() const { return m_boxes.Count() > m_mostBoxes || m_samples > m_mostSamples; }

private:
    // A file that keeps every picture in a fragment of its own has some seven boxes for each, which
    // with tiny pictures are one for every 43 bytes.
    static std::uint64_t MostBoxes(std::uint64_t fileSize) {
        constexpr std::uint64_t always = 100'000;
        constexpr std::uint64_t bytesOfEach = 32;
        return std::max(always, fileSize / bytesOfEach);
    }

    // A sample is a byte at least. A file may be cut off behind a good part of what it promises.
    static std::uint64_t MostSamples(std::uint64_t fileSize) {
        constexpr std::uint64_t always = 1'000'000;
        constexpr std::uint64_t timesWhatItHolds = 16;
        return std::max(always, fileSize * timesWhatItHolds);
    }

    Mp4Boxes& m_boxes;
    const std::uint64_t m_mostBoxes;
    const std::uint64_t m_mostSamples;
    std::uint64_t m_samples = 0;
};

} // namespace

std::vector<TrackBoxes> ReadTrackBoxes(const std::string& path) {
    std::vector<TrackBoxes> tracks;
    const auto boxes = Mp4Boxes::Open(path);
    if (boxes == nullptr) {
        return tracks;
    }
    const auto movie = Find(*boxes, Mp4Box{"", {0, boxes->Size()}}, "moov");
    if (movie) {
        boxes->ForEach(movie->payload, [&](const Mp4Box& box) {
            if (box.type == "trak") {
                tracks.push_back({NumberBehindTimes(*boxes, box, "tkhd"), HandlerOf(*boxes, box),
                                  DescriptionsOf(*boxes, box)});
            }
            return true;
        });
    }
    return tracks;
}

std::uint32_t ReadMovieUnitsPerSecond(const std::string& path) {
    const auto boxes = Mp4Boxes::Open(path);
    if (boxes == nullptr) {
        return 0;
    }
    const auto movie = Find(*boxes, Mp4Box{"", {0, boxes->Size()}}, "moov");
    return movie ? NumberBehindTimes(*boxes, *movie, "mvhd") : 0;
}

bool IsTooCostlyToOpen(const std::string& path) {
    constexpr int depth = 10;
    const auto boxes = Mp4Boxes::Open(path);
    if (boxes == nullptr) {
        return false;
    }
    OpeningCost cost(*boxes);
    cost.Add({0, boxes->Size()}, depth);
    return cost.IsTooMuch();
}

} // namespace av
