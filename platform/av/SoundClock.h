// Where in a stream of sound a packet stands: time stamps counted in sample frames.
#pragma once

#include <cstdint>

#include "platform/av/Handles.h"

namespace av {

// Positions are in frames from the first packet's time stamp on. Where the codec makes packets of a
// whole number of units (1024 frames in AAC), a position is a whole number of them too: that takes
// the rounding out of time stamps in milliseconds or 1/90000 s, and the trembling of recorders'
// clocks. The same time stamp always gives the same position, wherever reading began.
//
// Thread-safety: safe from any thread.
class SoundClock {
public:
    // `origin`: the first packet's time stamp; rate in Hz, positive; unit in frames, 1 where the
    // codec has none; phase: how many frames before their sound the time stamps are as a rule, to
    // be made up for before rounding.
    SoundClock(AVRational timeBase, std::int64_t origin, int rate, int unit, std::int64_t phase);

    // Whether the time stamps are fine enough for positions to be right.
    bool IsFineEnough() const;

    // Whether a number of frames can be told exactly enough to cut by it.
    bool IsExact() const;

    bool IsOrigin(std::int64_t timestamp) const { return timestamp == m_origin; }

    std::int64_t PositionOf(std::int64_t timestamp) const;

    // The same without regard to units.
    std::int64_t FramesAt(std::int64_t timestamp) const;

    // A time stamp at or before that of the position.
    std::int64_t TimestampOf(std::int64_t position) const;

    // Frames in so many ticks.
    std::int64_t FramesIn(std::int64_t ticks) const;

    // Frames in so many millionths of a second.
    std::int64_t FramesInTime(std::int64_t microseconds) const;

    // A position's time in 100 ns.
    std::int64_t TimeOf(std::int64_t position) const;

private:
    AVRational m_timeBase;
    std::int64_t m_origin;
    int m_rate;
    int m_unit;
    std::int64_t m_phase;
};

} // namespace av
