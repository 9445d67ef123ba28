// When the pictures of a stream are shown, told from its packets alone: nothing is decoded.
//
// Stepping through a file is then as cheap as reading it, and whoever steps decodes only the
// pictures that are looked at (see DeferredVideo.h).
//
//     auto timeline = PictureTimeline::Open(path, 0);   // null: its packets do not tell
//     timeline->Seek(50'000'000);                        // 5 s
//     PictureSpan span;
//     while (timeline->Read(span) == ReadResult::Picture) { ... }
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

#include "platform/av/Handles.h"
#include "platform/av/PacketOrder.h"
#include "platform/av/VideoStream.h"

namespace av {

// Times are in units of 100 ns on the file's own timeline, edit lists applied.
//
// Thread-safety: none; one thread at a time.
class PictureTimeline {
public:
    // The pictures of the file's video stream number `ordinal`, attached pictures not counted.
    // Null unless each packet is one picture with a time stamp: that is so for the codecs
    // that MP4 and QuickTime files were made for, and nowhere else certain.
    static std::unique_ptr<PictureTimeline> Open(const std::string& path, int ordinal);

    // Nothing that is shown before `time` counts. Where a file begins with pictures that lack what
    // they refer to, its packets begin earlier than its pictures.
    void BeginAt(std::int64_t time);

    // The next Read gives the span with start <= time < end, the first one where `time` lies before
    // it, and End where it lies behind all. False only when the file cannot be sought.
    bool Seek(std::int64_t time);

    // The next span in order of presentation. Spans never overlap, and one ends where the next one
    // starts.
    ReadResult Read(PictureSpan& span);

    // Whether nothing follows the span read last.
    bool AtEnd() const { return m_order.IsDone(); }

    std::int64_t PacketsRead() const { return m_packetsRead; }

private:
    explicit PictureTimeline(FormatContextPtr context, int stream);

    bool LandBefore(std::int64_t time);
    bool LandAtStart();
    bool ReadFirst();
    bool SeekTo(std::int64_t timestamp);
    bool StartsGroup(const PacketStamp& first, std::int64_t wanted);
    bool ReadPacket();
    void Take(const AVPacket& packet);
    ReadResult ReadNext(PictureSpan& span);

    FormatContextPtr m_context;
    const AVStream* m_stream;
    PacketPtr m_packet;
    PacketOrder m_order;
    std::int64_t m_begin = std::numeric_limits<std::int64_t>::min(); // no span starts before it
    std::int64_t m_target =
        std::numeric_limits<std::int64_t>::min(); // a span that ends by it is skipped
    std::int64_t m_firstDecoded = 0;              // decode time of the file's first packet
    std::int64_t m_packetsRead = 0;
};

} // namespace av
