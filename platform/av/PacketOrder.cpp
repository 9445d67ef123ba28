#include "platform/av/PacketOrder.h"

#include <algorithm>

extern "C" {
#include <libavutil/common.h>
}

namespace av {

namespace {

// No codec reorders over more than 16 pictures. A file whose decode times never catch up with its
// pictures must not make the whole of it wait here.
constexpr std::size_t kMostWaiting = 64;

} // namespace

void PacketOrder::Restart(std::int64_t first) {
    m_waiting.clear();
    m_first = first;
    m_decoded.reset();
    m_distance = 1;
    m_closed = false;
}

void PacketOrder::Push(const PacketStamp& stamp) {
    m_decoded = stamp.decoded;
    if (stamp.shown < m_first) {
        return;
    }
    const auto at = std::lower_bound(
        m_waiting.begin(), m_waiting.end(), stamp.shown,
        [](const PacketStamp& waiting, std::int64_t shown) { return waiting.shown < shown; });
    if (at != m_waiting.end() && at->shown == stamp.shown) {
        *at = stamp;
    } else {
        m_waiting.insert(at, stamp);
    }
}

bool PacketOrder::Settled() const {
    if (m_closed) {
        return !m_waiting.empty();
    }
    return m_waiting.size() > kMostWaiting ||
           (m_waiting.size() > 1 && m_decoded >= m_waiting[1].shown);
}

// Where the last picture's own duration is unknown it lasts as long as the one before it.
std::int64_t PacketOrder::EndOfLast() const {
    const PacketStamp& last = m_waiting.front();
    return av_sat_add64(last.shown, last.duration > 0 ? last.duration : m_distance);
}

bool PacketOrder::Pop(PictureSpan& span) {
    if (!Settled()) {
        return false;
    }
    span.start = m_waiting.front().shown;
    span.end = m_waiting.size() > 1 ? m_waiting[1].shown : EndOfLast();
    m_distance = std::max<std::int64_t>(1, av_sat_sub64(span.end, span.start));
    m_first = av_sat_add64(span.start, 1);
    m_waiting.erase(m_waiting.begin());
    return true;
}

} // namespace av
