// Packets of sound on their way to the decoder, each with its place, and those that came before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>

#include "platform/av/Demuxer.h"
#include "platform/av/PreRoll.h"
#include "platform/av/SoundClock.h"
#include "platform/av/WorkCounters.h"

namespace av {

struct SoundPacket {
    PacketPtr packet;                     // its pts is `position`
    std::int64_t position = 0;            // in frames, by SoundClock
    std::optional<std::int64_t> duration; // in frames, where the file tells it exactly
    std::int64_t padding = 0;             // frames at its end that are no sound
    bool isCut = false;                   // an edit list leaves all of it out
};

// The packets that come next begin as far before a position as its decoding needs. Which packets
// that are depends on the position alone, not on what was read before.
//
// Thread-safety: none.
class SoundFeed {
public:
    // `demuxer` is borrowed and outlives this; nobody else reads it. `usualFrames`: of a packet.
    SoundFeed(Demuxer& demuxer, const SoundClock& clock, const PreRoll& preRoll,
              std::int64_t usualFrames);

    // The next packet; null at the end of the file.
    SoundPacket* Peek();

    // Passes over the next packet. REQUIRES: Peek has just given it.
    void Advance();

    // Goes to where the position's first packet is the next one: the one that holds the position,
    // or the first behind it where none does. Passes on from where it is when `onwards`, which
    // the position must lie ahead for. False when the file cannot be read any more.
    bool GoTo(std::int64_t position, bool onwards);

    // The packets, in order, that have to be decoded before the next one.
    std::deque<SoundPacket*> PreRollPackets();

    // Goes to the first packet.
    bool Rewind();

    const WorkCounters& Counters() const { return m_counters; }

private:
    bool Place(AVPacket& packet, SoundPacket& placed);
    bool ReadOne();
    void Forget();
    void TrimHistory();
    void PassTo(std::int64_t position);
    std::size_t PreRollCount() const;
    bool HasPreRoll() const;
    bool SeekBefore(std::int64_t position);

    Demuxer& m_demuxer;
    const SoundClock m_clock;
    const PreRoll m_preRoll;
    const std::int64_t m_usualFrames;
    const std::int64_t m_farthest; // no packet stands so far from the first

    std::deque<SoundPacket> m_ahead;   // read and not passed
    std::deque<SoundPacket> m_history; // passed, the latest last
    std::deque<int> m_sizes;           // of those, in bytes
    std::size_t m_historyBytes = 0;
    bool m_fromStart = true;                // nothing lies before the history
    std::optional<std::int64_t> m_expected; // where a packet without a time stamp stands
    WorkCounters m_counters;
};

} // namespace av
