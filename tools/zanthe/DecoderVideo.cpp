#include "tools/zanthe/DecoderVideo.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "tools/zanthe/TimeText.h"
#include "zanthe/core/BitmapVideoSample.h"

namespace Program {

namespace {

// No time, and none that a decoder leaves behind: what is still there it has not written.
constexpr double Untold = -2.0;

// Before the first picture that is shown, and behind the last that one.
std::int64_t StartByEdges(const std::vector<std::int64_t>& edges, std::int64_t units) {
    const auto last = std::prev(edges.end(), 2);
    const auto behind = std::upper_bound(edges.begin(), last, units);
    return *behind > units && behind != edges.begin() ? *std::prev(behind) : *behind;
}

} // namespace

DecoderVideo::DecoderVideo(std::unique_ptr<Zanthe::VideoDecoderToVideoSampleReader> reader,
                           const VideoFacts& facts)
    : m_reader(std::move(reader))
    , m_facts(facts)
    , m_bitmap(std::make_shared<Zanthe::Bitmap>(m_reader->outputWidth(), m_reader->outputHeight(),
                                                facts.alpha == Alpha::Premultiplied)) {
    m_facts.width = m_reader->outputWidth();
    m_facts.height = m_reader->outputHeight();
    m_facts.tellsTimes = false;
    m_bitmap->ZeroOutBits();
}

std::optional<Picture> DecoderVideo::At(const Zanthe::MediaTime& time) {
    if (m_actualTime < 0.0) {
        m_actualTime = Untold;
    }
    const bool served =
        m_reader->internalVideoDecoder()->readFrame(time, m_bitmap->GetBits(), m_actualTime);
    // The decoder of ".brec" recordings always claims to have served, and says by its time that it
    // has not.
    if (!served || (m_actualTime < 0.0 && m_actualTime != Untold)) {
        return std::nullopt;
    }
    Picture picture{.sample = std::make_unique<Zanthe::BitmapVideoSample>(m_bitmap)};
    if (!m_facts.edges.empty()) {
        picture.start = StartByEdges(m_facts.edges, WholeUnits(time));
    } else if (!m_facts.echoesTimes && m_actualTime >= 0 && m_actualTime < 1e9) {
        picture.start = std::llround(m_actualTime * static_cast<double>(UnitsPerSecond));
    }
    return picture;
}

} // namespace Program
