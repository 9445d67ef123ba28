// What a stream of sound is, told by its first frames.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/av/Demuxer.h"
#include "platform/av/SoundClock.h"
#include "platform/av/SoundDecoder.h"

namespace av {

// How sound lies in memory and what of it there is.
struct SoundFormat {
    AVSampleFormat sample = AV_SAMPLE_FMT_NONE;
    int rate = 0;             // Hz
    int channels = 0;         // 1 to 64
    std::uint64_t layout = 0; // AV_CH_..., one bit a channel; 0: not known

    bool operator==(const SoundFormat&) const = default;
};

struct SoundFacts {
    SoundFormat format;
    std::int64_t start = 0; // of frame 0, in 100 ns of the file's time
};

// The format of a decoded frame.
SoundFormat FormatOf(const AVFrame& frame);

// What the first packets show. Positions are in frames from the first packet on.
struct SoundProbe {
    SoundFormat format;
    std::int64_t origin = 0; // time stamp of the first packet
    int unit = 1;            // as in SoundClock, as is the next
    std::int64_t phase = 0;
    std::int64_t usualFrames = 1; // of a packet
    std::int64_t begin = 0;       // the first frame that is sound
    bool isCounted = false;       // time stamps say less than counting from the start
};

SoundClock ClockOf(const AVStream& stream, const SoundProbe& probe);

// Reads the first packets of `demuxer`, which is then to be rewound. Nothing where none of them
// decodes, or to sound beyond what is served: 64 channels, 768 kHz.
std::optional<SoundProbe> ProbeSound(Demuxer& demuxer, SoundDecoder& decoder);

} // namespace av
