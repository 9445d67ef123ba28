// The pictures of a stream from one landing place on, in order, without gaps.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>

#include "platform/av/PacketFeed.h"
#include "platform/av/Picture.h"
#include "platform/av/PictureClock.h"
#include "platform/av/VideoDecoder.h"

namespace av {

// A picture lasts until the next one that the decoder gives, so the run is always one picture ahead
// of what it has handed out. That costs a picture for each landing and nothing after it, and holds
// where no table in the file would: packets that are broken, hidden or give two pictures.
//
// Thread-safety: none.
class PictureRun {
public:
    // `everyTimeTold`: every packet says when its picture is shown, so that some can be left out.
    PictureRun(PacketFeed& feed, VideoDecoder& decoder, const AVStream& stream, bool everyTimeTold);

    // Begins with the packet that the feed is at. `fromStart`: it is the file's first, so all that
    // comes out counts. Otherwise what is presented before that packet's picture is left out: it
    // refers to what was not decoded.
    void Begin(bool fromStart);

    // Decodes the first picture. False when there is none. `keepFrom` as for Next.
    bool Prime(std::int64_t keepFrom);

    // Whether the first picture can be told to depend on what was not decoded.
    bool IsBroken() const { return m_broken; }

    // When the picture that Next will give starts, as far as it is known; empty where there is
    // none.
    std::optional<std::int64_t> Position() const;

    // The next picture that ends after `keepFrom`; those before are not handed out, and those that
    // nothing refers to are not even decoded. Null at the end.
    PicturePtr Next(std::int64_t keepFrom);

    // Whether a picture that starts behind `picture`, which Next has just given, was left out
    // because one after it was to take its place, which then did not come. Then it has to be read
    // again with nothing left out.
    bool HasLost(const Picture& picture) const { return m_leftOut > picture.Start(); }

    // When the stream's first picture starts, if this run has come from there and seen it.
    std::optional<std::int64_t> StreamBegin() const;

    // Nothing is left out until the next Begin.
    void DecodeAll() { m_decodesAll = true; }

    // The stream's time of the packet that is decoded next.
    std::optional<std::int64_t> NextDts();

    const PictureClock& Clock() const { return m_clock; }

private:
    bool Decode(std::int64_t keepFrom);
    void Take(AVFrame& frame);
    bool IsLeading(const AVFrame& frame, std::int64_t start);
    bool AwaitsBefore(const AVFrame& frame);
    void Judge(const AVFrame& frame);
    void SendNext(std::int64_t keepFrom);
    void NoteSent(const AVPacket& packet);
    bool MayLeaveOut(const AVPacket& packet, std::int64_t keepFrom);
    PicturePtr Emit(std::int64_t end);
    FramePtr PassFirst(std::int64_t end);

    PacketFeed& m_feed;
    VideoDecoder& m_decoder;
    PictureClock m_clock;
    FramePtr m_scratch;
    const bool m_everyTimeTold;
    const std::int64_t m_apart; // pts that differ by less may be those of one picture's two fields

    // What came out and was not handed out, by start. Of two with one start the later one is shown.
    std::map<std::int64_t, FramePtr> m_ready;
    std::map<std::int64_t, std::int64_t> m_inside; // pts of the packets in the decoder, by serial
    std::deque<std::int64_t> m_sent;               // pts of the packets sent last
    bool m_fromStart = false;
    bool m_landed = false; // the landing packet's picture, or one after it, came out
    bool m_judged = false;
    bool m_broken = false;
    bool m_decodesAll = false;
    std::int64_t m_serial = 0;                // of the packet sent last
    std::int64_t m_firstSerial = 0;           // of the landing packet
    std::optional<std::int64_t> m_firstStart; // of the first picture taken since Begin
    std::int64_t m_lastPts = AV_NOPTS_VALUE;  // of the packet sent last
    bool m_lastLeftOut = false;
    std::int64_t m_floor = INT64_MIN;   // nothing that starts before is handed out
    std::int64_t m_leftOut = INT64_MIN; // start of the last picture that may have been left out
};

} // namespace av
