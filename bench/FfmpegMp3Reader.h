// The floor of the MP3 benches: what an engineer writes by hand on FFmpeg to read stereo sound,
// with the same care for exactness as the library takes (pre-roll, conversion in phase) and no
// more.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/av/Handles.h"

// Thread-safety: none.
class FfmpegMp3Reader {
public:
    // Opens a stereo MP3 file, to be read at `rate` Hz. Throws std::runtime_error.
    FfmpegMp3Reader(const std::string& path, int rate);

    // The next Read begins at this frame of the output.
    void Seek(std::int64_t frame);

    // Reads on from where the last read ended and answers how many frames there were.
    unsigned int Read(unsigned int count, std::array<float*, 2> planes);

private:
    bool DecodeNext();
    bool ConvertNext();
    void StartConversion(std::int64_t inputFrame);
    void Convert(const std::uint8_t** planes, int samples);
    unsigned int CopyOut(unsigned int count, const std::array<float*, 2>& planes);

    av::FormatContextPtr m_format;
    av::CodecContextPtr m_codec;
    av::SwrContextPtr m_resampler; // null where there is nothing to convert
    av::PacketPtr m_packet;
    av::FramePtr m_frame;
    int m_stream = 0;
    int m_rate;              // of the output, Hz
    int m_step = 1;          // input frames after which input and output line up again
    bool m_started = false;  // a frame was converted since the last seek
    std::int64_t m_next = 0; // output frame that the caller reads next

    // The converted frame at hand: its planes, its first output frame, its length.
    std::array<std::vector<float>, 2> m_converted;
    std::array<const float*, 2> m_planes{};
    std::int64_t m_start = 0;
    int m_length = 0;
};
