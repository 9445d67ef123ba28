// Turns the packets of a file's sound into decoded buffers, one packet a call.
//
//     Decoder decoder("song.mp3");
//     while (decoder.decodeToFrame([](const Buffer& samples) { ... })) {}
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/av/Handles.h"
#include "platform/av/WorkCounters.h"
#include "zanthe/audio/ffmpeg/Buffer.h"
#include "zanthe/audio/ffmpeg/CodecStage.h"
#include "zanthe/audio/ffmpeg/PacketReader.h"
#include "zanthe/audio/ffmpeg/WarmUp.h"

namespace FFMPEGDecoder {

// Thread-safety: none; belongs to one reader.
class Decoder {
public:
    // Opens the file at `path` (UTF-8) and a decoder for its first audio stream. Throws what
    // PacketReader, CodecStage and FrameClock throw.
    explicit Decoder(const std::string& path);

    // Decodes the next packet of the stream and calls `callback`, if there is one, with the frames
    // that come out: views that are valid during the call only, planar float at the stream's own
    // rate, at their position in the stream. At the end of the file it drains the decoder. Samples
    // that belong to the encoder's delay or padding are cut off; a frame of nothing else counts as
    // delivered but brings no call.
    //
    // False: the packet gave no frame. For MP3 that is the end of the stream.
    // Throws std::runtime_error, see CodecStage::send and CodecStage::receive.
    bool decodeToFrame(const std::function<void(const Buffer&)>& callback);

    // Moves to the packet that holds `frame` or one before it. A seek that fails leaves the
    // position where it was. Throws what CodecStage throws.
    void seek(std::int64_t frame);

    // The first frame number from which the samples delivered since the last seek are those of a
    // read from the start of the file; the largest position while it is not known yet.
    std::int64_t settledFrom() const { return m_warmUp.settledFrom(); }

    int channels() const { return m_channels; } // of the stream when it was opened, at least 1

    int sampleRate() const; // Hz, at least 1

    std::int64_t bitRate() const { return m_packets.bitRate(); } // of the file, bits per second

    const av::WorkCounters& counters() const { return m_counters; }

private:
    struct FrameHolder {
        av::FramePtr frame;
        std::int64_t startFrame = 0;
    };

    std::int64_t readStartSkip();
    bool readPacket(AVPacket& packet);
    void deliver(std::int64_t packetStart, const std::function<void(const Buffer&)>& callback);

    // In the order of construction; they are given back the other way round.
    PacketReader m_packets;
    av::WorkCounters m_counters;
    CodecStage m_codec;
    FrameClock m_clock;
    int m_channels; // kept, for a demuxer may change the stream's own while it reads
    WarmUp m_warmUp;
    FrameHolder m_frame;
};

} // namespace FFMPEGDecoder
