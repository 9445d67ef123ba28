// A rate conversion that can begin anywhere in a file and yet be in phase with one that began at
// its start.
//
// A converter keeps a phase: an input frame falls exactly on an output frame only every
// inRate / gcd(inRate, outRate) input frames. So a conversion that is to begin at input frame S is
// fed silence from the last such position at or before S; what that brings out is dropped, and
// from S on the output is numbered and phased as if everything before had been converted too.
//
// Example: from 44100 to 48000 Hz the grid is 147 input frames wide. For S = 1000 the silence is
// 1000 mod 147 = 118 frames long, output numbering starts at 882 * 48000 / 44100 = 960, and the
// first output frame let through is 960 + 118 * 48000 / 44100 = 1088.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "zanthe/audio/ffmpeg/ResamplerImpl.h"

namespace FFMPEGDecoder {

// Where a conversion that begins at an input frame has to start.
struct ResampleStart {
    std::int64_t padding;      // frames of silence to feed first, at the input's rate
    std::int64_t outPosition;  // number of the first output frame
    std::int64_t trimPosition; // first output frame that may leave

    // For a conversion that begins at input frame `start` of a stream whose frame `offset` falls on
    // output frame 0. Requires inRate > 0 and outRate >= 0, in Hz.
    static ResampleStart at(std::int64_t start, std::int64_t offset, int inRate, int outRate);

    bool operator==(const ResampleStart&) const = default;
};

// Thread-safety: none; one thread at a time.
class Resampler {
public:
    using Sink = std::function<void(const Buffer&)>;

    Resampler(int inChannels, int inRate, int outRate, int maxSamples);

    // Begins anew: what the converter held and its positions are gone.
    void reset();

    // Begins anew at input frame `start`, in phase with a conversion from the stream's beginning.
    void restart(std::int64_t start, std::int64_t offset);

    // Converts the next input and hands the result, which may be empty, to `sink`. Throws
    // std::runtime_error("too many samples passed into ResamplerImpl::resample()").
    void convert(const Buffer& input, const Sink& sink);

    // Brings out what the converter still holds at the end of the stream. The next conversion
    // begins anew.
    void drain(const Sink& sink);

    const ResamplerWithPaddingImpl& impl() const { return *m_impl; }

private:
    int m_inChannels;
    int m_inRate;     // Hz
    int m_outRate;    // Hz
    int m_maxSamples; // frames
    std::shared_ptr<ResamplerWithPaddingImpl> m_impl;
};

} // namespace FFMPEGDecoder
