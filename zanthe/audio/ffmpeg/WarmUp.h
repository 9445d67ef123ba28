// When a decoder that was set down in the middle of a stream has become what it would be had it
// come from the start.
//
// An MP3 frame may begin its data up to 511 bytes (MPEG-2: 255) before itself, in what the frames
// before it left over: the bit reservoir. How many frames that is depends on their size at that
// very place; in a pause of a file with variable bit rate the average says nothing of it. Then the
// overlap of the transform and the synthesis window hold what two granules before left there.
// (ISO/IEC 11172-3, 2.4.1.7, 2.4.2.7 and 2.4.3.4; the shorter MPEG-2 forms: ISO/IEC 13818-3, 2.4.)
#pragma once

#include <cstdint>

struct AVCodecParameters;

namespace FFMPEGDecoder {

// Thread-safety: none; belongs to one decoder.
class WarmUp {
public:
    explicit WarmUp(const AVCodecParameters& stream);

    // A seek: nothing is known of what comes.
    void restart();

    // The next packet, which stands at frame `start` of the stream and has `bytes` bytes.
    void add(std::int64_t start, int bytes);

    // The frame number from which what is decoded is what a read from the start gives; the largest
    // position while that is not known.
    std::int64_t settledFrom() const { return m_settledFrom; }

private:
    std::int64_t m_reservoirBytes = 0; // how far back a frame may reach
    std::int64_t m_overheadBytes = 0;  // of a packet, not part of the reservoir
    int m_overlapPackets = 2;          // whole ones that settle overlap and window
    std::int64_t m_historyBytes = 0;   // of the packets since the last seek
    int m_wholePackets = 0;            // of them, those with their whole reservoir
    std::int64_t m_settledFrom = 0;
};

} // namespace FFMPEGDecoder
