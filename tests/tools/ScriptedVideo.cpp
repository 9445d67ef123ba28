#include "tests/tools/ScriptedVideo.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "tools/zanthe/TimeText.h"

namespace {

using Program::Picture;
using Program::UnitsLookedFor;

constexpr int Padding = 3; // pixels at the right of each row, and rows below

class PaddedSample : public Zanthe::VideoSample {
public:
    PaddedSample(int width, int height, std::uint32_t colour)
        : m_width(width)
        , m_height(height)
        , m_pixels(static_cast<std::size_t>(bufferWidth()) *
                   static_cast<std::size_t>(bufferHeight())) {
        for (int y = 0; y < height; ++y) {
            std::fill_n(m_pixels.begin() + std::ptrdiff_t{y} * bufferWidth(), width, colour);
        }
    }

    void decrementRefCount() override {}

    int width() const override { return m_width; }

    int height() const override { return m_height; }

    int bufferWidth() const final { return m_width + Padding; }

    int bufferHeight() const final { return m_height + Padding; }

    int bytesPerRow() const override { return bufferWidth() * 4; }

    bool isFlipped() const override { return false; }

    Zanthe::VideoSampleFormat videoSampleFormat() override {
        return Zanthe::VideoSampleFormat::SystemMemory;
    }

    void lockData() override {}

    unsigned char* data() override { return reinterpret_cast<unsigned char*>(m_pixels.data()); }

    void unlockData() override {}

    int dataSize() override { return bytesPerRow() * bufferHeight(); }

    Zanthe::CGColorSpace* colorSpace() const override { return nullptr; }

private:
    int m_width;
    int m_height;
    std::vector<std::uint32_t> m_pixels;
};

} // namespace

std::unique_ptr<Zanthe::VideoSample> PlainSample(int width, int height, std::uint32_t colour) {
    return std::make_unique<PaddedSample>(width, height, colour);
}

ScriptedVideo::ScriptedVideo(std::vector<std::int64_t> first, std::int64_t last, bool tellsTimes)
    : starts(std::move(first))
    , end(last) {
    facts.width = 16;
    facts.height = 8;
    facts.tellsTimes = tellsTimes;
    facts.reader = "script";
}

std::optional<Picture> ScriptedVideo::At(const Zanthe::MediaTime& time) {
    reads.push_back(time);
    return script ? script(reads.size() - 1, time) : Honest(time);
}

std::optional<Picture> ScriptedVideo::Honest(const Zanthe::MediaTime& time) const {
    const auto index = IndexAt(UnitsLookedFor(time));
    return index ? std::optional(PictureOf(*index)) : std::nullopt;
}

std::optional<std::size_t> ScriptedVideo::IndexAt(std::int64_t units) const {
    // A sample ends a unit before the next one starts, and covers the unit before its own start.
    const std::int64_t lead = facts.tellsTimes ? 1 : 0;
    if (starts.empty() || units >= end - lead || units > facts.duration.value_or(units)) {
        return std::nullopt;
    }
    const auto behind = std::upper_bound(starts.begin(), starts.end(), units + lead);
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(behind - starts.begin(), 1)) - 1;
}

Picture ScriptedVideo::PictureOf(std::size_t index) const {
    Picture picture{
        .sample = PlainSample(facts.width, facts.height, static_cast<std::uint32_t>(index) + 1)};
    if (facts.tellsTimes) {
        const std::int64_t next = index + 1 < starts.size() ? starts[index + 1] : end;
        picture.start = starts[index];
        picture.duration = next - starts[index] - 1;
    }
    return picture;
}

std::vector<std::int64_t> EvenStarts(std::size_t count) {
    std::vector<std::int64_t> starts;
    for (std::size_t i = 0; i < count; ++i) {
        starts.push_back(static_cast<std::int64_t>(i) * 1001 * 10'000'000 / 30000);
    }
    return starts;
}
