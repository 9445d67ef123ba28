#include "platform/av/SoundFlow.h"

#include <algorithm>
#include <utility>

extern "C" {
#include <libavutil/mathematics.h>
#include <libavutil/samplefmt.h>
}

namespace av {

std::unique_ptr<SoundFlow> SoundFlow::Create(const SoundFormat& from, const SoundFormat& to) {
    auto conversion = SoundConversion::Create(from, to);
    return conversion == nullptr
               ? nullptr
               : std::unique_ptr<SoundFlow>(new SoundFlow(from, std::move(conversion), to));
}

SoundFlow::SoundFlow(const SoundFormat& from, std::unique_ptr<SoundConversion> conversion,
                     const SoundFormat& to)
    : m_conversion(std::move(conversion))
    , m_from(from)
    , m_to(to)
    , m_inputFrameBytes(av_get_bytes_per_sample(from.sample) * from.channels) {}

bool SoundFlow::Restart() {
    m_history.clear();
    m_inputFrames = 0;
    m_outputFrames = 0;
    m_conversionAt = 0;
    m_ended = false;
    m_made = {};
    m_madeFrom = 0;
    m_given = 0;
    return m_conversion->Restart();
}

// What a conversion that begins on the grid needs to have heard before it is in phase again.
void SoundFlow::Remember(const std::uint8_t* bytes, int frames) {
    const auto frameBytes = static_cast<std::size_t>(m_inputFrameBytes);
    m_history.insert(m_history.end(), bytes, bytes + static_cast<std::size_t>(frames) * frameBytes);
    const auto kept = static_cast<std::size_t>(m_conversion->Step() + m_conversion->Reach());
    const std::size_t held = m_history.size() / frameBytes;
    if (held > 2 * kept) {
        m_history.erase(m_history.begin(), m_history.begin() + static_cast<std::ptrdiff_t>(
                                                                   (held - kept) * frameBytes));
    }
}

void SoundFlow::DropGiven() {
    const auto bytes = static_cast<std::ptrdiff_t>(m_given * OutputFrameBytes());
    m_made.bytes.erase(m_made.bytes.begin(), m_made.bytes.begin() + bytes);
    m_made.frames -= m_given;
    m_madeFrom += m_given;
    m_given = 0;
}

// Keeps what came out, but for frames that were there before.
void SoundFlow::Keep(const SoundBytes& made) {
    const std::int64_t known =
        std::clamp<std::int64_t>(m_outputFrames - m_conversionAt, 0, made.frames);
    m_made.bytes.insert(m_made.bytes.end(),
                        made.bytes.begin() +
                            static_cast<std::ptrdiff_t>(known * OutputFrameBytes()),
                        made.bytes.end());
    m_made.frames += made.frames - known;
    m_conversionAt += made.frames;
    m_outputFrames += made.frames - known;
}

bool SoundFlow::Convert(const std::uint8_t* bytes, int frames) {
    SoundBytes made;
    const bool done = m_conversion->Convert(&bytes, frames, made);
    Keep(made);
    return done;
}

// Has the conversion hear again what led to the end, from the nearest place that it can begin at.
bool SoundFlow::GoOn() {
    m_ended = false;
    const auto held = static_cast<std::int64_t>(m_history.size()) / m_inputFrameBytes;
    const std::int64_t step = m_conversion->Step();
    const std::int64_t start =
        std::max<std::int64_t>(m_inputFrames - m_conversion->Reach(), 0) / step * step;
    m_conversionAt = m_conversion->OutputAt(start);
    const std::int64_t toHear = m_inputFrames - start;
    return m_conversion->Restart(start) &&
           Convert(m_history.data() + (held - toHear) * m_inputFrameBytes,
                   static_cast<int>(toHear));
}

bool SoundFlow::Put(const std::uint8_t* bytes, int frames) {
    DropGiven();
    if ((m_ended && !GoOn()) || !Convert(bytes, frames)) {
        return false;
    }
    Remember(bytes, frames);
    m_inputFrames += frames;
    return true;
}

bool SoundFlow::End() {
    if (m_ended) {
        return true;
    }
    DropGiven();
    SoundBytes made;
    if (!m_conversion->Finish(made)) {
        return false;
    }
    Keep(made);
    m_ended = true;
    const std::int64_t before = av_rescale_rnd(m_inputFrames, m_to.rate, m_from.rate, AV_ROUND_UP);
    const std::int64_t excess = std::clamp<std::int64_t>(m_outputFrames - before, 0, m_made.frames);
    m_made.frames -= excess;
    m_made.bytes.resize(static_cast<std::size_t>(m_made.frames * OutputFrameBytes()));
    m_outputFrames -= excess;
    return true;
}

std::int64_t SoundFlow::Take(std::uint8_t* bytes, std::int64_t frames) {
    const std::int64_t count = std::clamp<std::int64_t>(frames, 0, Frames());
    std::copy_n(m_made.bytes.data() + m_given * OutputFrameBytes(), count * OutputFrameBytes(),
                bytes);
    m_given += count;
    return count;
}

} // namespace av
