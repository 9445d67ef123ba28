#include "zanthe/audio/ffmpeg/Resampler.h"

#include <algorithm>
#include <numeric>

namespace FFMPEGDecoder {

ResampleStart ResampleStart::at(std::int64_t start, std::int64_t offset, int inRate, int outRate) {
    const std::int64_t common = outRate == 0 ? inRate : std::gcd(outRate, inRate);
    const std::int64_t step = std::max<std::int64_t>(inRate / common, 1);
    const std::int64_t padding = (step + (start - offset) % step) % step;
    const std::int64_t outPosition = ScalePosition(start - padding - offset, outRate, inRate);
    return {padding, outPosition, ScalePosition(padding, outRate, inRate) + outPosition};
}

Resampler::Resampler(int inChannels, int inRate, int outRate, int maxSamples)
    : m_inChannels(inChannels)
    , m_inRate(inRate)
    , m_outRate(outRate)
    , m_maxSamples(maxSamples) {
    reset();
}

void Resampler::reset() {
    m_impl =
        std::make_shared<ResamplerWithPaddingImpl>(m_inChannels, m_inRate, m_outRate, m_maxSamples);
}

void Resampler::restart(std::int64_t start, std::int64_t offset) {
    const ResampleStart from = ResampleStart::at(start, offset, m_inRate, m_outRate);
    reset();
    m_impl->setOutPosition(from.outPosition);
    m_impl->setTrimPosition(from.trimPosition);
    // Piece by piece: coprime rates ask for a second of it, times the channels that a header
    // claims.
    const Buffer silence(m_inChannels, std::min<std::int64_t>(from.padding, m_maxSamples));
    for (std::int64_t left = from.padding; left > 0; left -= silence.frames()) {
        m_impl->resampleChunked(silence.slice(0, left), [](const Buffer&) {});
    }
}

void Resampler::convert(const Buffer& input, const Sink& sink) {
    if (m_impl->flushed()) {
        reset();
    }
    sink(m_impl->resampleTrimmed(input));
}

void Resampler::drain(const Sink& sink) {
    sink(m_impl->resample(Buffer(0, 0)));
    m_impl->setFlushed();
}

} // namespace FFMPEGDecoder
