#include "zanthe/audio/ffmpeg/ResamplerImpl.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/mem.h>
#include <libavutil/opt.h>
#include <libavutil/samplefmt.h>
}

namespace FFMPEGDecoder {

namespace {

constexpr int kOutChannels = 2;
constexpr AVSampleFormat kSampleFormat = AV_SAMPLE_FMT_FLTP;

// Set only for the counts whose meaning is beyond doubt; 0 leaves the choice to libswresample.
std::int64_t LayoutOf(int channels) {
    switch (channels) {
    case 1:
        return AV_CH_LAYOUT_MONO;
    case 2:
        return AV_CH_LAYOUT_STEREO;
    case 6:
        return AV_CH_LAYOUT_5POINT1;
    default:
        return 0;
    }
}

std::vector<const std::uint8_t*> InputPlanes(const Buffer& input, int count) {
    std::vector<const std::uint8_t*> planes;
    planes.reserve(static_cast<std::size_t>(count));
    const auto& channels = input.channels();
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        const Channel& channel = channels[std::min(i, channels.size() - 1)];
        planes.push_back(reinterpret_cast<const std::uint8_t*>(channel.data()));
    }
    return planes;
}

} // namespace

void ResamplerImpl::PlanesDeleter::operator()(std::uint8_t** planes) const {
    av_freep(&planes[0]); // one block holds the samples of all planes
    av_freep(&planes);
}

ResamplerImpl::ResamplerImpl(int inChannels, int inRate, int outRate, int maxSamples)
    : m_context(swr_alloc())
    , m_inChannels(inChannels)
    , m_inRate(inRate)
    , m_outRate(outRate)
    , m_maxSamples(maxSamples) {
    if (!m_context) {
        throw std::bad_alloc();
    }
    configure();
    // A converter that was not initialised must not even be asked for its output size.
    if (hasUsualRate() && swr_init(m_context.get()) >= 0 &&
        swr_is_initialized(m_context.get()) != 0) {
        allocatePlanes();
    }
}

bool ResamplerImpl::hasUsualRate() const {
    return m_outRate >= kSmallestOutputRate && m_outRate <= kLargestOutputRate;
}

void ResamplerImpl::configure() const {
    SwrContext* context = m_context.get();
    av_opt_set_int(context, "in_channel_count", m_inChannels, 0);
    if (const std::int64_t layout = LayoutOf(m_inChannels); layout != 0) {
        av_opt_set_int(context, "in_channel_layout", layout, 0);
    }
    av_opt_set_int(context, "in_sample_rate", m_inRate, 0);
    av_opt_set_sample_fmt(context, "in_sample_fmt", kSampleFormat, 0);
    av_opt_set_int(context, "out_channel_count", kOutChannels, 0);
    av_opt_set_int(context, "out_channel_layout", AV_CH_LAYOUT_STEREO, 0);
    av_opt_set_int(context, "out_sample_rate", m_outRate, 0);
    av_opt_set_sample_fmt(context, "out_sample_fmt", kSampleFormat, 0);
}

void ResamplerImpl::allocatePlanes() {
    m_outCapacity = swr_get_out_samples(m_context.get(), m_maxSamples);
    std::uint8_t** planes = nullptr;
    if (av_samples_alloc_array_and_samples(&planes, nullptr, kOutChannels, m_outCapacity,
                                           kSampleFormat, 0) < 0) {
        m_outCapacity = 0;
    }
    m_outPlanes.reset(planes);
}

Buffer ResamplerImpl::resample(const Buffer& input) {
    if (input.frames() > m_maxSamples) {
        throw std::runtime_error("too many samples passed into ResamplerImpl::resample()");
    }
    m_used = true;
    if (m_outCapacity <= 0) {
        return Buffer(0, 0);
    }
    const std::vector<const std::uint8_t*> planes =
        input.empty() ? std::vector<const std::uint8_t*>() : InputPlanes(input, m_inChannels);
    const int frames =
        swr_convert(m_context.get(), m_outPlanes.get(), m_outCapacity,
                    planes.empty() ? nullptr : const_cast<const std::uint8_t**>(planes.data()),
                    static_cast<int>(input.frames()));
    std::uint8_t** out = m_outPlanes.get();
    Buffer result({reinterpret_cast<float*>(out[0]), reinterpret_cast<float*>(out[1])},
                  std::max(frames, 0));
    result.start = m_outPosition;
    m_outPosition += result.frames();
    return result;
}

Buffer ResamplerWithPaddingImpl::resampleTrimmed(const Buffer& input) {
    return resample(input).slice(m_trimPosition, std::numeric_limits<std::int64_t>::max());
}

void ResamplerWithPaddingImpl::resampleChunked(const Buffer& input,
                                               const std::function<void(const Buffer&)>& sink) {
    for (std::int64_t from = input.start; from < input.range().End(); from += maxSamples()) {
        sink(resampleTrimmed(input.slice(from, maxSamples())));
    }
}

} // namespace FFMPEGDecoder
