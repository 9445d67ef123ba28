#include "platform/av/SoundClock.h"

#include <algorithm>
#include <limits>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace av {

namespace {

constexpr AVRational kHns{1, 10'000'000};

// Positions are small enough that sums and differences of a few cannot overflow.
std::int64_t Scale(std::int64_t value, AVRational from, AVRational to, AVRounding rounding) {
    constexpr std::int64_t kMost = std::int64_t{1} << 60;
    value = std::clamp(value, -kMost, kMost);
    const std::int64_t scaled = av_rescale_q_rnd(value, from, to, rounding);
    if (scaled == std::numeric_limits<std::int64_t>::min()) { // does not fit
        return value < 0 ? -kMost : kMost;
    }
    return std::clamp(scaled, -kMost, kMost);
}

// So many units that their frames can be counted.
std::int64_t Within(std::int64_t units) {
    constexpr std::int64_t kMost = std::int64_t{1} << 44;
    return std::clamp(units, -kMost, kMost);
}

} // namespace

SoundClock::SoundClock(AVRational timeBase, std::int64_t origin, int rate, int unit,
                       std::int64_t phase)
    : m_timeBase(timeBase)
    , m_origin(origin)
    , m_rate(rate)
    , m_unit(unit)
    , m_phase(phase) {}

bool SoundClock::IsFineEnough() const {
    const double framesPerTick = av_q2d(m_timeBase) * m_rate;
    // A tick of a whole packet is exact; otherwise the rounding must stay well below half a unit.
    return m_unit == 1 ? framesPerTick <= 1 : framesPerTick * 3 < m_unit || framesPerTick == m_unit;
}

bool SoundClock::IsExact() const {
    return av_q2d(m_timeBase) * m_rate <= 2;
}

std::int64_t SoundClock::FramesIn(std::int64_t ticks) const {
    return Scale(ticks, m_timeBase, {1, m_rate}, AV_ROUND_NEAR_INF);
}

std::int64_t SoundClock::FramesInTime(std::int64_t microseconds) const {
    return Scale(microseconds, {1, AV_TIME_BASE}, {1, m_rate}, AV_ROUND_NEAR_INF);
}

std::int64_t SoundClock::FramesAt(std::int64_t timestamp) const {
    return FramesIn(timestamp - m_origin);
}

std::int64_t SoundClock::PositionOf(std::int64_t timestamp) const {
    const std::int64_t units =
        m_unit == 1 || m_phase == 0
            ? Scale(timestamp - m_origin, m_timeBase, {m_unit, m_rate}, AV_ROUND_NEAR_INF)
            : Scale(FramesAt(timestamp) + m_phase, {1, 1}, {m_unit, 1}, AV_ROUND_NEAR_INF);
    return Within(units) * m_unit;
}

std::int64_t SoundClock::TimestampOf(std::int64_t position) const {
    return m_origin + Scale(position - m_phase, {1, m_rate}, m_timeBase, AV_ROUND_DOWN);
}

std::int64_t SoundClock::TimeOf(std::int64_t position) const {
    return Scale(m_origin, m_timeBase, kHns, AV_ROUND_NEAR_INF) +
           Scale(position, {1, m_rate}, kHns, AV_ROUND_NEAR_INF);
}

} // namespace av
