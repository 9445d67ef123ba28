#include "platform/av/PictureClock.h"

#include <algorithm>
#include <limits>

extern "C" {
#include <libavutil/common.h>
#include <libavutil/mathematics.h>
}

namespace av {

namespace {

constexpr AVRational kHns{1, 10'000'000};
constexpr std::int64_t kDefaultDuration = 400'000;
// Broken packets leave times behind that nothing takes. No decoder holds back more pictures.
constexpr std::size_t kMostWaiting = 64;

AVRational FrameRateOf(const AVStream& stream) {
    return stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
}

// Beyond what fits: the nearest that does, with room for sums.
std::int64_t Within(std::int64_t value) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / 4;
    return std::clamp(value, -kMost, kMost);
}

std::int64_t Rescale(std::int64_t value, AVRational from, AVRational to) {
    const std::int64_t result = av_rescale_q_rnd(Within(value), from, to, AV_ROUND_DOWN);
    if (result == std::numeric_limits<std::int64_t>::min()) { // does not fit
        return Within(value < 0 ? -std::numeric_limits<std::int64_t>::max()
                                : std::numeric_limits<std::int64_t>::max());
    }
    return Within(result);
}

} // namespace

PictureClock::PictureClock(const AVStream& stream)
    : m_timeBase(stream.time_base)
    , m_frameRate(FrameRateOf(stream)) {}

void PictureClock::Reset() {
    m_waiting.clear();
    m_counted = 0;
    m_told = false;
    m_last = 0;
}

void PictureClock::Sent(const AVPacket& packet) {
    if (packet.pts != AV_NOPTS_VALUE) {
        m_told = true;
        return;
    }
    if (m_told) {
        return; // follows its neighbour
    }
    if (packet.dts != AV_NOPTS_VALUE) {
        m_waiting.insert(FromStream(packet.dts));
    } else if (m_frameRate.num > 0) {
        m_waiting.insert(Rescale(m_counted++, av_inv_q(m_frameRate), kHns));
    } else {
        m_waiting.insert(m_counted++ * kDefaultDuration);
    }
    if (m_waiting.size() > kMostWaiting) {
        m_waiting.erase(m_waiting.begin());
    }
}

std::int64_t PictureClock::StartOf(const AVFrame& frame) {
    if (frame.pts != AV_NOPTS_VALUE) {
        m_last = FromStream(frame.pts);
    } else if (!m_waiting.empty()) {
        m_last = *m_waiting.begin();
        m_waiting.erase(m_waiting.begin());
    } else {
        m_last += UsualDuration();
    }
    return m_last;
}

// The packet's own duration, added before rounding so that the end is the one the file tells.
std::int64_t PictureClock::EndOf(const AVFrame& frame, std::int64_t start) const {
    std::int64_t end = start;
    if (frame.pkt_duration > 0) {
        const std::int64_t duration = Within(frame.pkt_duration);
        end = frame.pts == AV_NOPTS_VALUE ? start + FromStream(duration)
                                          : FromStream(av_sat_add64(frame.pts, duration));
    }
    return end > start ? end : start + UsualDuration();
}

std::int64_t PictureClock::UsualDuration() const {
    const std::int64_t duration = m_frameRate.num > 0 ? Rescale(1, av_inv_q(m_frameRate), kHns) : 0;
    return duration > 0 ? duration : kDefaultDuration;
}

std::int64_t PictureClock::FromStream(std::int64_t time) const {
    return Rescale(time, m_timeBase, kHns);
}

std::int64_t PictureClock::ToStream(std::int64_t hns) const {
    // A time whose start is rounded down to `hns` may lie up to a unit behind it.
    const std::int64_t last = Rescale(hns + 1, kHns, m_timeBase);
    return FromStream(last) > hns ? last - 1 : last;
}

} // namespace av
