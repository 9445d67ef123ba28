// When each picture that comes out of a decoder is shown, in units of 100 ns.
#pragma once

#include <cstdint>
#include <set>

#include "platform/av/Handles.h"

namespace av {

// Most packets carry the time at which their picture is shown. Others (AVI with B-pictures) only
// say when they are decoded. There are as many pictures as packets and the decoder gives them in
// order of presentation, so the first one shown takes the earliest of those times, the second the
// next, and so on. Packets without any time (elementary streams) are counted from the start of the
// file. Where some packets tell the time of presentation, a picture of one that does not (program
// streams) follows the picture before it.
//
// Thread-safety: none.
class PictureClock {
public:
    explicit PictureClock(const AVStream& stream);

    // From here on the packets are those of another place.
    void Reset();

    // REQUIRES: in the order in which they are decoded, before their frames are asked for.
    void Sent(const AVPacket& packet);

    // REQUIRES: once for each frame, in the order in which the decoder gives them.
    std::int64_t StartOf(const AVFrame& frame);

    // When a picture ends that starts at `start` and that nothing follows; later than that.
    std::int64_t EndOf(const AVFrame& frame, std::int64_t start) const;

    // `time` in the stream's time base to units of 100 ns, rounded down, and the latest time in the
    // stream's time base that is not after `hns`.
    std::int64_t FromStream(std::int64_t time) const;
    std::int64_t ToStream(std::int64_t hns) const;

private:
    std::int64_t UsualDuration() const;

    AVRational m_timeBase;
    AVRational m_frameRate;
    std::multiset<std::int64_t> m_waiting; // decode times that no picture has taken
    bool m_told = false;                   // a packet said when its picture is shown
    std::int64_t m_counted = 0;            // packets without any time
    std::int64_t m_last = 0;               // what StartOf said last
};

} // namespace av
