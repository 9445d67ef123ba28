// Where to begin decoding so that the picture shown at a time comes out.
#pragma once

#include <cstdint>
#include <set>

#include "platform/av/Demuxer.h"
#include "platform/av/PacketFeed.h"
#include "platform/av/PictureClock.h"

namespace av {

// Containers are sought by decode time and say which packets are key frames; both are only hints
// for what is wanted here. So this proposes one place after the other, further back each time, and
// the start of the file in the end.
//
//     for (Landing::Place place = landing.Find(time); ; place = landing.Earlier()) { try it }
//
// Thread-safety: none.
class Landing {
public:
    enum class Place {
        KeyFrame, // what the container says is one
        Start,    // the start of the file: there is nothing further back
        Nowhere,  // the file cannot be read any more
    };

    // `reorder`: by how many places pictures move between decoding and presentation; 0 where it
    // does not matter.
    Landing(Demuxer& demuxer, PacketFeed& feed, const PictureClock& clock, int reorder = 0)
        : m_demuxer(demuxer)
        , m_feed(feed)
        , m_clock(clock)
        , m_reorder(reorder) {}

    // Moves the feed to the last key frame whose picture starts at or before `time` (100 ns).
    Place Find(std::int64_t time);

    // Moves it to the key frame before the one found last.
    Place Earlier();

    // Moves it to the start of the file.
    Place ToStart();

    // The place found last is no key frame; it is not proposed again.
    void MarkFalse();

    // Whether the place found last lies before the one that would have served, for the sake of key
    // frames that may have changed places: only what starts at the time sought is complete then.
    bool LiesFurtherBack() const { return m_further != m_reorder; }

    std::int64_t Seeks() const { return m_seeks; }

private:
    Place Search();
    bool SeekToKey();
    bool MayServe(const AVPacket& key) const;
    bool IsOnlyStartTrusted() const;
    bool NeedsOneBefore();
    void StepBack();

    Demuxer& m_demuxer;
    PacketFeed& m_feed;
    const PictureClock& m_clock;
    const int m_reorder;
    std::set<std::int64_t> m_false; // decode times of packets that are no key frames after all

    // The search under way, all in the stream's time base but m_time.
    std::int64_t m_time = 0;
    std::int64_t m_target = 0; // what the container is asked for next
    std::int64_t m_landed = 0; // where it landed last
    std::int64_t m_step = 0;   // how far to go back where a landing brought nothing
    int m_refused = 0;         // places proposed in vain
    int m_further = 0;         // key frames left to go back beyond the first that serves
    std::int64_t m_seeks = 0;
};

} // namespace av
