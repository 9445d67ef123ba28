// Decoder and rate conversion joined: any span of a file's sound, at any output rate.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "zanthe/audio/ffmpeg/Buffer.h"
#include "zanthe/audio/ffmpeg/Decoder.h"
#include "zanthe/audio/ffmpeg/Resampler.h"

namespace FFMPEGDecoder {

// Thread-safety: none; belongs to one reader.
class AudioPipeline {
public:
    // Opens the file at `path` (UTF-8) for delivery at `outputRate` Hz. Throws what Decoder throws.
    AudioPipeline(const std::string& path, int outputRate);

    // Fills the positions of `request`, which counts at the output rate and has 2 planes, and
    // answers how many frames from its start on are served. See IAudioReader::FillAudioBuffer.
    std::int64_t fill(Buffer& request);

    // The output position behind the stream's last frame; -1 until a read has come upon the end.
    std::int64_t endFrame() const { return m_endFrame; }

    const av::WorkCounters& counters() const { return m_decoder->counters(); }

private:
    std::int64_t preRoll() const;     // input frames
    std::int64_t filterReach() const; // input frames
    bool fillFrom(std::int64_t backoff, Buffer& request);
    void seek(std::int64_t frame);
    bool decodeInto(Buffer& request);
    void drainInto(Buffer& request);
    void take(Buffer& request, const Buffer& converted);
    void silenceFront(Buffer& request);

    std::unique_ptr<Decoder> m_decoder;
    std::unique_ptr<Resampler> m_resampler;
    std::int64_t m_inputRate;  // Hz
    std::int64_t m_outputRate; // Hz
    std::int64_t m_endFrame;
    std::int64_t m_offset;         // input frame that falls on output frame 0
    bool m_primed;                 // the conversion was restarted since the last seek
    std::int64_t m_neededFrom = 0; // first input frame that the request leans on
    bool m_begunTooLate = false;   // and the decoder had not settled when it came to it
    FrameRange m_filled;           // the part of the request that is served
};

} // namespace FFMPEGDecoder
