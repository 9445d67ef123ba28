// The decoder of one stream, and where in the stream it stands.
#pragma once

#include <cstdint>

#include "platform/av/Handles.h"

namespace FFMPEGDecoder {

// The clock of a stream, in which a sample frame is a whole number of ticks.
//
// That holds for MP3, whose time base 1/14112000 is a multiple of every rate it knows; this road is
// made for MP3 alone.
class FrameClock {
public:
    // Throws std::runtime_error("Decoder() - receiveParameters failed") when the stream gives no
    // rate to count with, or one beyond kLargestRate, or when a frame is less than a tick.
    explicit FrameClock(const AVStream& stream);

    // Beyond this a header is taken for damaged: a converter's filter grows with the rate.
    static constexpr int kLargestRate = 768000; // Hz

    int rate() const { return m_rate; } // Hz

    std::int64_t framesFromTicks(std::int64_t ticks) const { return ticks / m_ticksPerFrame; }

    // The stream's own time stamp of a frame number, truncated.
    std::int64_t timestampOfFrame(std::int64_t frame) const;

private:
    AVRational m_timeBase;
    int m_rate;          // Hz
    int m_ticksPerFrame; // at least 1
};

// Thread-safety: none; belongs to one decoder.
class CodecStage {
public:
    // Opens a decoder for `stream` that delivers planar float.
    //
    // Throws std::runtime_error: "Decoder() - couldn't find codec",
    // "CodecContext: avcodec_alloc_context3 failed", "Decoder() - receiveParameters failed",
    // "Decoder() - open failed" (also when the codec has nothing but other sample formats).
    CodecStage(const AVStream& stream, std::int64_t startSkip);

    // Hands over the next packet, an empty one to begin draining. Throws
    // std::runtime_error("Error sending packet") when the decoder refuses it: a damaged packet, or
    // a second draining.
    void send(const AVPacket& packet);

    // Takes the next decoded frame into `frame`. False: the packet is used up, or the stream is.
    // Throws std::runtime_error("Decoder::decodeToFrame - Unexpected error: N"), N being FFmpeg's
    // code in decimal, also for a frame that is not planar float.
    bool receive(AVFrame& frame);

    // Forgets what came before, as a seek demands, so that what follows decodes as in a decoder
    // that has seen nothing. Throws what the constructor throws.
    void flush();

    // Encoder delay at the start of the stream, in frames: its first samples are not sound.
    std::int64_t startSkip() const { return m_startSkip; }

private:
    void open();

    const AVStream& m_stream; // the packet reader's
    const AVCodec* m_codec;
    av::CodecContextPtr m_context;
    std::int64_t m_startSkip;
};

} // namespace FFMPEGDecoder
