// The pictures of a stream from one landing place on, in order, without gaps.
#pragma once

#include <cstdint>
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
    PictureRun(PacketFeed& feed, VideoDecoder& decoder, const AVStream& stream)
        : m_feed(feed)
        , m_decoder(decoder)
        , m_clock(stream)
        , m_scratch(av_frame_alloc()) {}

    // Begins with the packet that the feed is at. `fromStart`: it is the file's first, so all that
    // comes out counts. Otherwise what is presented before that packet's picture is left out: it
    // refers to what was not decoded.
    void Begin(bool fromStart);

    // Decodes the first picture. False when there is none. `keepFrom` as for Next.
    bool Prime(std::int64_t keepFrom);

    // Whether the first picture can be told to depend on what was not decoded.
    bool IsBroken() const { return m_broken; }

    // When the picture that Next will give starts; empty where there is none or it is not known.
    std::optional<std::int64_t> Position() const;

    // The next picture that ends after `keepFrom`; those before are not handed out, and those that
    // nothing refers to are not even decoded. Null at the end.
    PicturePtr Next(std::int64_t keepFrom);

    // Whether the picture given last might have a successor that was left out because one after it,
    // which then did not come, was to take its place. Then it has to be read again with nothing
    // left out.
    bool HasLost(const Picture& picture) const { return m_leftOut > picture.Start(); }

    // Nothing is left out until the next Begin.
    void DecodeAll() { m_decodesAll = true; }

    // The stream's time of the packet that is decoded next.
    std::optional<std::int64_t> NextDts();

    const PictureClock& Clock() const { return m_clock; }

private:
    struct Timed {
        FramePtr frame;
        std::int64_t start = 0;
    };

    std::optional<Timed> Decode(std::int64_t keepFrom);
    bool IsLeading(const AVFrame& frame);
    void Judge(const AVFrame& frame);
    void SendNext(std::int64_t keepFrom);
    bool MayLeaveOut(const AVPacket& packet, std::int64_t keepFrom);
    PicturePtr TakeLast();

    PacketFeed& m_feed;
    VideoDecoder& m_decoder;
    PictureClock m_clock;
    FramePtr m_scratch;

    Timed m_held; // the picture that Next will give
    bool m_fromStart = false;
    bool m_landed = false; // the landing packet's picture, or one after it, came out
    bool m_judged = false;
    bool m_broken = false;
    bool m_decodesAll = false;
    std::int64_t m_serial = 0;           // of the packet sent last
    std::int64_t m_firstSerial = 0;      // of the landing packet
    std::optional<std::int64_t> m_floor; // start of the landing packet's picture
    std::int64_t m_leftOut = INT64_MIN;  // start of the last picture that may have been left out
};

} // namespace av
