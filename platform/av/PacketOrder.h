// Puts the pictures of a stream, which come in the order of decoding, into that of presentation.
//
//     order.Push(stamp);                  // packet by packet
//     while (order.Pop(span)) { ... }     // whatever is settled by now
//
// A picture's span is settled when no later packet can be shown before the next picture: a packet
// is never shown before it is decoded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace av {

// One packet's times, in the stream's time base.
struct PacketStamp {
    std::int64_t shown = 0;
    std::int64_t decoded = 0;
    std::int64_t duration = 0; // 0: unknown
};

// A picture is shown in [start, end).
struct PictureSpan {
    std::int64_t start = 0;
    std::int64_t end = 0;

    friend bool operator==(const PictureSpan&, const PictureSpan&) = default;
};

// Thread-safety: none.
class PacketOrder {
public:
    // Forgets everything. Packets that are shown before `first` are passed over from here on.
    void Restart(std::int64_t first);

    // The next packet in the order of decoding. Of two that are shown at one time the later one
    // counts; one that is shown before a span already popped does not.
    void Push(const PacketStamp& stamp);

    // No packet follows: what is left is settled.
    void Close() { m_closed = true; }

    // The next span in the order of presentation, in the stream's time base; false while it is not
    // settled, or when nothing is left.
    bool Pop(PictureSpan& span);

    // Whether nothing is left and nothing can come.
    bool IsDone() const { return m_closed && m_waiting.empty(); }

private:
    bool Settled() const;
    std::int64_t EndOfLast() const;

    std::vector<PacketStamp> m_waiting; // by time shown
    std::int64_t m_first = 0;           // nothing before it is taken
    std::optional<std::int64_t> m_decoded;
    std::int64_t m_distance = 1; // between the last two pictures popped
    bool m_closed = false;
};

} // namespace av
