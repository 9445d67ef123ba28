// Packets on their way to the decoder, with a view of those that come next.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "platform/av/Demuxer.h"

namespace av {

// Thread-safety: none.
class PacketFeed {
public:
    explicit PacketFeed(Demuxer& demuxer)
        : m_demuxer(demuxer) {}

    // Forgets what was read ahead, because the demuxer has been moved.
    void Clear();

    // The next packet, kept until Pop; null at the end of the file.
    const AVPacket* Front();
    void Pop();

    // Whether one of the next packets is presented in [from, to] (pts). Looks only a short way
    // ahead: the answer no is also given where it cannot tell.
    bool HasPresented(std::int64_t from, std::int64_t to);

    // Whether one of the next packets is presented after `from` and before `to` (both pts).
    bool HasBetween(std::int64_t from, std::int64_t to);

    std::int64_t PacketsRead() const { return m_packetsRead; }

private:
    bool ReadOne();

    Demuxer& m_demuxer;
    std::deque<PacketPtr> m_packets;
    std::size_t m_bytes = 0;
    std::int64_t m_packetsRead = 0;
};

} // namespace av
