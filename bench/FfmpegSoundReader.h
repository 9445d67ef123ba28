// The floor of the sound benches: what an engineer writes by hand on FFmpeg to read the stereo
// sound of a film at its own rate, with a pre-roll for the codec and no more.
#pragma once

#include <cstdint>
#include <string>

#include "platform/av/Handles.h"

// Thread-safety: none.
class FfmpegSoundReader {
public:
    // Opens a file whose decoder gives planar floats in stereo. Throws std::runtime_error.
    explicit FfmpegSoundReader(const std::string& path);

    // The next Read begins at this frame.
    void Seek(std::int64_t frame);

    // Reads on from where the last read ended and answers how many frames there were.
    unsigned int Read(unsigned int count, float* left, float* right);

private:
    bool DecodeNext();
    std::int64_t FrameOf(std::int64_t timestamp) const;

    av::FormatContextPtr m_format;
    av::CodecContextPtr m_codec;
    av::PacketPtr m_packet;
    av::FramePtr m_frame;
    int m_stream = 0;
    std::int64_t m_next = 0;  // frame that the caller reads next
    std::int64_t m_start = 0; // of the decoded frame at hand
    int m_length = 0;         // of it; 0: none is at hand
};
