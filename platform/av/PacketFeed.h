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

    // Whether a packet that follows the front one is presented after it, but not after `limit`
    // (both pts). Looks only a short way ahead: the answer no is also given where it cannot tell.
    bool IsOvertaken(std::int64_t limit);

    std::int64_t PacketsRead() const { return m_packetsRead; }

private:
    bool ReadOne();

    Demuxer& m_demuxer;
    std::deque<PacketPtr> m_packets;
    std::size_t m_bytes = 0;
    std::int64_t m_packetsRead = 0;
};

} // namespace av
