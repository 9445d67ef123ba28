// Rate conversion to stereo planar float, with absolute frame numbers on what comes out.
//
// ResamplerImpl converts; ResamplerWithPaddingImpl can also drop what comes out before a position;
// Resampler.h restarts a conversion in the middle of a file as if it had run from the start.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/av/Handles.h"
#include "zanthe/audio/ffmpeg/Buffer.h"

namespace FFMPEGDecoder {

// Output rates, in Hz, that a conversion is made for. A converter's filter grows with the step
// between the rates: at a few Hz it would take gigabytes and minutes.
constexpr int kSmallestOutputRate = 1000;
constexpr int kLargestOutputRate = 768000;

// Always delivers 2 channels, mixed by libswresample's own coefficients: mono comes out on both at
// 1/sqrt(2), six channels are taken as 5.1 with side channels.
//
// Thread-safety: none; one thread at a time.
class ResamplerImpl {
public:
    // Rates in Hz; maxSamples is the longest input of one call, in frames. An output rate beyond
    // the limits above, or a combination that libswresample refuses, gives a converter that answers
    // every input with nothing.
    ResamplerImpl(int inChannels, int inRate, int outRate, int maxSamples);

    // Converts the next input, or drains what the converter holds when `input` has no channels or
    // no frames. Of an input with fewer channels than announced the last is heard on the missing
    // ones; surplus ones are not heard.
    //
    // The answer is a view of this object's memory, valid until the next call, and starts at
    // outPosition(), which moves on by its length. Throws
    // std::runtime_error("too many samples passed into ResamplerImpl::resample()").
    Buffer resample(const Buffer& input);

    std::int64_t outPosition() const { return m_outPosition; } // of the next output frame

    void setOutPosition(std::int64_t position) { m_outPosition = position; }

    bool used() const { return m_used; }

    bool flushed() const { return m_flushed; }

    // The stream has ended and been drained; feed nothing more.
    void setFlushed() { m_flushed = true; }

    int inChannels() const { return m_inChannels; }

protected:
    int maxSamples() const { return m_maxSamples; }

private:
    struct PlanesDeleter {
        void operator()(std::uint8_t** planes) const;
    };

    bool hasUsualRate() const;
    void configure() const;
    void allocatePlanes();

    av::SwrContextPtr m_context;
    std::unique_ptr<std::uint8_t*, PlanesDeleter> m_outPlanes;
    int m_inChannels;
    int m_inRate;          // Hz
    int m_outRate;         // Hz
    int m_maxSamples;      // frames of one input
    int m_outCapacity = 0; // frames that the output planes hold
    std::int64_t m_outPosition = 0;
    bool m_used = false;
    bool m_flushed = false;
};

// Thread-safety: none; one thread at a time.
class ResamplerWithPaddingImpl : public ResamplerImpl {
public:
    using ResamplerImpl::ResamplerImpl;

    // resample(), cut to what lies at or behind trimPosition().
    Buffer resampleTrimmed(const Buffer& input);

    // resampleTrimmed() over an input of any length, in steps of at most maxSamples frames, each
    // result handed to `sink`. Does nothing for an input without channels or frames.
    void resampleChunked(const Buffer& input, const std::function<void(const Buffer&)>& sink);

    std::int64_t trimPosition() const { return m_trimPosition; } // first output frame let through

    void setTrimPosition(std::int64_t position) { m_trimPosition = position; }

private:
    std::int64_t m_trimPosition = 0;
};

} // namespace FFMPEGDecoder
