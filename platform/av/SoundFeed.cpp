#include "platform/av/SoundFeed.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/av/WorkTotals.h"

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace av {

namespace {

// Packets that are read just after a seek may be pieces, or have a guess for a time stamp.
constexpr std::int64_t kDoubtful = 3;

constexpr std::size_t kMostHistory = 1200;
constexpr std::size_t kMostHistoryBytes = std::size_t{16} << 20;

// A stamp beyond the file's duration, with room for a wrong one, is damaged: the silence up to it
// would be endless.
std::int64_t FarthestIn(const AVFormatContext& format, const SoundClock& clock) {
    constexpr std::int64_t kHour = std::int64_t{3600} * AV_TIME_BASE;
    constexpr std::int64_t kMost = 24 * 14 * kHour;
    const std::int64_t duration = std::clamp<std::int64_t>(format.duration, 0, kMost) + kHour;
    return clock.FramesInTime(format.duration > 0 ? duration : kMost);
}

// What the second of the two numbers says that a packet holds at its end and is no sound.
std::int64_t PaddingOf(const AVPacket& packet) {
    std::size_t size = 0;
    const std::uint8_t* data = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    return data != nullptr && size >= 8 ? std::int64_t{AV_RL32(data + 4)} : 0;
}

} // namespace

SoundFeed::SoundFeed(Demuxer& demuxer, const SoundClock& clock, const PreRoll& preRoll,
                     std::int64_t usualFrames)
    : m_demuxer(demuxer)
    , m_clock(clock)
    , m_preRoll(preRoll)
    , m_usualFrames(usualFrames)
    , m_farthest(FarthestIn(demuxer.Format(), clock)) {}

void SoundFeed::Forget() {
    m_ahead.clear();
    m_history.clear();
    m_sizes.clear();
    m_historyBytes = 0;
    m_expected.reset();
}

bool SoundFeed::Rewind() {
    Forget();
    m_fromStart = true;
    return m_demuxer.Rewind();
}

// A packet without a time stamp stands behind the one before; the first ones of a landing have none
// to stand behind.
bool SoundFeed::Place(AVPacket& packet, SoundPacket& placed) {
    std::int64_t stamp = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (stamp != AV_NOPTS_VALUE && std::abs(m_clock.PositionOf(stamp)) > m_farthest) {
        stamp = AV_NOPTS_VALUE;
    }
    if (m_clock.IsOrigin(stamp) && m_demuxer.IsFirst(packet)) {
        placed.position = 0;
    } else if (stamp != AV_NOPTS_VALUE) {
        placed.position = m_clock.PositionOf(stamp);
    } else if (m_expected || m_fromStart) {
        placed.position = m_expected.value_or(0);
    } else {
        return false;
    }
    if (packet.duration > 0 && m_clock.IsExact()) {
        placed.duration = m_clock.FramesIn(packet.duration);
    }
    m_expected = placed.position + placed.duration.value_or(m_usualFrames);
    placed.padding = PaddingOf(packet);
    placed.isCut = (packet.flags & AV_PKT_FLAG_DISCARD) != 0;
    packet.flags &= ~AV_PKT_FLAG_DISCARD;
    packet.pts = placed.position;
    packet.dts = placed.position;
    return true;
}

bool SoundFeed::ReadOne() {
    while (true) {
        SoundPacket placed;
        placed.packet.reset(av_packet_alloc());
        if (placed.packet == nullptr || !m_demuxer.Read(*placed.packet)) {
            return false;
        }
        ++m_counters.packetsRead;
        ++WorkTotals().packetsRead;
        if (Place(*placed.packet, placed)) {
            m_ahead.push_back(std::move(placed));
            return true;
        }
    }
}

SoundPacket* SoundFeed::Peek() {
    return !m_ahead.empty() || ReadOne() ? &m_ahead.front() : nullptr;
}

void SoundFeed::Advance() {
    const int size = m_ahead.front().packet->size;
    m_history.push_back(std::move(m_ahead.front()));
    m_ahead.pop_front();
    m_sizes.push_back(size);
    m_historyBytes += static_cast<std::size_t>(size);
    TrimHistory();
}

// One more than the latest needs, as it may itself become the next one again.
void SoundFeed::TrimHistory() {
    while (m_history.size() > 1 &&
           (m_history.size() > kMostHistory || m_historyBytes > kMostHistoryBytes ||
            PreRollCount() + 1 + static_cast<std::size_t>(kDoubtful) < m_history.size())) {
        m_historyBytes -= static_cast<std::size_t>(m_sizes.front());
        m_sizes.pop_front();
        m_history.pop_front();
        m_fromStart = false;
    }
}

std::size_t SoundFeed::PreRollCount() const {
    return m_preRoll.PacketsOf(m_sizes);
}

bool SoundFeed::HasPreRoll() const {
    return m_fromStart || PreRollCount() + static_cast<std::size_t>(kDoubtful) <= m_history.size();
}

// Passes to the packet that holds the position, or the first behind it.
void SoundFeed::PassTo(std::int64_t position) {
    while (const SoundPacket* next = Peek()) {
        if (next->position >= position) {
            break;
        }
        Advance();
    }
    const SoundPacket* next = Peek();
    const bool isBetween = next == nullptr || next->position > position;
    if (isBetween && !m_history.empty()) {
        m_ahead.push_front(std::move(m_history.back()));
        m_historyBytes -= static_cast<std::size_t>(m_sizes.back());
        m_history.pop_back();
        m_sizes.pop_back();
    }
}

bool SoundFeed::SeekBefore(std::int64_t position) {
    Forget();
    m_fromStart = false;
    ++m_counters.seeks;
    ++WorkTotals().seeks;
    return m_demuxer.SeekBefore(m_clock.TimestampOf(position));
}

bool SoundFeed::GoTo(std::int64_t position, bool onwards) {
    if (onwards) {
        PassTo(position);
        return true;
    }
    constexpr int kMostAttempts = 5;
    std::int64_t back = m_usualFrames * (m_preRoll.UsualPackets() + kDoubtful + 3);
    for (int attempt = 0; attempt < kMostAttempts && back < position; ++attempt, back *= 4) {
        if (!SeekBefore(position - back)) {
            break;
        }
        const SoundPacket* first = Peek();
        if (first == nullptr || first->position > position) {
            continue; // landed late
        }
        PassTo(position);
        if (HasPreRoll()) {
            return true;
        }
    }
    if (!Rewind()) {
        return false;
    }
    PassTo(position);
    return true;
}

std::deque<SoundPacket*> SoundFeed::PreRollPackets() {
    const std::size_t count = std::min(PreRollCount(), m_history.size());
    std::deque<SoundPacket*> packets;
    for (std::size_t i = m_history.size() - count; i < m_history.size(); ++i) {
        packets.push_back(&m_history[i]);
    }
    return packets;
}

} // namespace av
