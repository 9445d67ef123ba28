// How far before a packet of sound decoding has to begin for the packet to come out right.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "platform/av/Handles.h"

namespace av {

// Codecs lean on what came before: on an overlapping transform, a reservoir of bits, a filter's
// memory. Where that reaches back without end, this is how far it can be heard.
//
// Thread-safety: safe from any thread.
class PreRoll {
public:
    // REQUIRES: avformat_find_stream_info has been through.
    explicit PreRoll(const AVCodecParameters& stream);

    // Whether every packet decodes by itself.
    bool IsNone() const { return m_packets == 0; }

    // How many it usually is.
    std::int64_t UsualPackets() const;

    // How many of the packets, of which the last is the one before that in question, decoding has
    // to begin with; more than there are where they do not reach back far enough. `sizes` are in
    // bytes.
    std::size_t PacketsOf(const std::deque<int>& sizes) const;

private:
    std::int64_t m_packets = 0;
    std::int64_t m_reservoirBytes = 0; // of bits that packets leave to later ones
    std::int64_t m_overheadBytes = 0;  // of each packet, that the reservoir has not
};

} // namespace av
