// Packets in, frames out.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/av/Handles.h"

namespace av {

// Thread-safety: none; it runs threads of its own.
class VideoDecoder {
public:
    enum class Result {
        Frame,      // there is one
        NeedsInput, // Send another packet
        Ended,      // after Finish: there is none any more
    };

    // Null where nothing decodes the stream. `device` may be null; see VideoOptions.
    static std::unique_ptr<VideoDecoder> Open(const AVStream& stream, AVBufferRef* device);

    // The frame that this packet makes carries `serial` as its reordered_opaque. With
    // `onlyReferenced` the packet may be dropped where no other picture needs it. False where the
    // packet is broken. REQUIRES: the last Receive said NeedsInput, or nothing was sent since
    // Flush.
    bool Send(const AVPacket& packet, std::int64_t serial, bool onlyReferenced);

    // No more packets come; what is inside comes out.
    void Finish();

    // What a broken packet leaves behind is passed over.
    Result Receive(AVFrame& frame);

    // Ready for a packet from another place. What the decoder has learnt about the stream stays.
    void Flush();

    // As after Open: what it has learnt goes too. False where that fails; it is then as after
    // Flush.
    bool Reset();

    const AVCodecContext& Context() const { return *m_context; }

    std::int64_t FramesDecoded() const { return m_framesDecoded; }

private:
    VideoDecoder() = default;

    bool OpenContext();

    ParametersPtr m_parameters;
    AVRational m_timeBase{0, 1};
    BufferPtr m_device; // null: in memory
    CodecContextPtr m_context;
    bool m_fresh = true; // nothing has been sent since the opening
    std::int64_t m_framesDecoded = 0;
};

} // namespace av
