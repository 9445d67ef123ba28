// Packets of sound to frames of it.
#pragma once

#include <memory>

#include "platform/av/Handles.h"

namespace av {

// Nothing is cut off the frames: their place in the stream decides about that. Frames carry the
// time stamp of the packet they are from.
//
// Thread-safety: none.
class SoundDecoder {
public:
    enum class Result { Frame, NeedsPacket, End };

    // Null where nothing here decodes the stream, of which a copy of the parameters is kept.
    // `stream` is borrowed for the call.
    static std::unique_ptr<SoundDecoder> Create(const AVStream& stream);

    // Forgets everything, so that what follows decodes as in a decoder that has seen nothing: a
    // mere flush leaves traces in several of FFmpeg's. False where it does not start any more.
    bool Restart();

    // False for a packet that it refuses; the next may do. Null: there are no more.
    // REQUIRES: Receive has said NeedsPacket, or nothing was sent yet.
    bool Send(const AVPacket* packet);

    // End: after Send(null), when all frames are out.
    Result Receive(AVFrame& frame);

private:
    SoundDecoder(const AVCodec& codec, ParametersPtr parameters)
        : m_codec(codec)
        , m_parameters(std::move(parameters)) {}

    const AVCodec& m_codec; // FFmpeg's own, lives for ever
    const ParametersPtr m_parameters;
    CodecContextPtr m_context;
};

} // namespace av
