#include "platform/av/PacketFeed.h"

#include <algorithm>
#include <utility>

namespace av {

namespace {

// Pictures are reordered within 16 at most, so the one that overtakes is among the next few.
constexpr std::size_t kMostPackets = 20;
constexpr std::size_t kMostBytes = std::size_t{32} << 20;

} // namespace

void PacketFeed::Clear() {
    m_packets.clear();
    m_bytes = 0;
}

const AVPacket* PacketFeed::Front() {
    return !m_packets.empty() || ReadOne() ? m_packets.front().get() : nullptr;
}

void PacketFeed::Pop() {
    m_bytes -= static_cast<std::size_t>(m_packets.front()->size);
    m_packets.pop_front();
}

bool PacketFeed::HasPresented(std::int64_t from, std::int64_t to) {
    const auto fits = [&](const PacketPtr& packet) {
        return packet->pts != AV_NOPTS_VALUE && packet->pts >= from && packet->pts <= to;
    };
    if (std::any_of(m_packets.begin(), m_packets.end(), fits)) {
        return true;
    }
    while (m_packets.size() < kMostPackets && m_bytes < kMostBytes && ReadOne()) {
        if (fits(m_packets.back())) {
            return true;
        }
    }
    return false;
}

// A packet that is decoded at `to` or later is presented no sooner.
bool PacketFeed::HasBetween(std::int64_t from, std::int64_t to) {
    for (std::size_t i = 0; i < kMostPackets; ++i) {
        if (i == m_packets.size() && (m_bytes >= kMostBytes || !ReadOne())) {
            return false;
        }
        const AVPacket& packet = *m_packets[i];
        if (packet.pts == AV_NOPTS_VALUE || packet.dts == AV_NOPTS_VALUE || packet.dts >= to) {
            return false;
        }
        if (packet.pts > from && packet.pts < to) {
            return true;
        }
    }
    return false;
}

bool PacketFeed::ReadOne() {
    PacketPtr packet(av_packet_alloc());
    if (packet == nullptr || !m_demuxer.Read(*packet)) {
        return false;
    }
    ++m_packetsRead;
    m_bytes += static_cast<std::size_t>(packet->size);
    m_packets.push_back(std::move(packet));
    return true;
}

} // namespace av
