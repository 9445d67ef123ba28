#include "zanthe/audio/ffmpeg/AudioPipeline.h"

#include <algorithm>

namespace FFMPEGDecoder {

namespace {

constexpr int kMaxSamples = 2304; // two MP3 frames

// At low bit rates a frame may lean on many before it.
constexpr std::int64_t kLowBitRatePerChannel = 60000; // bits per second
constexpr std::int64_t kLongPreRoll = 11520;          // 10 MP3 frames
constexpr std::int64_t kShortPreRoll = 4608;          // 4 MP3 frames

} // namespace

AudioPipeline::AudioPipeline(const std::string& path, int outputRate)
    : m_decoder(std::make_unique<Decoder>(path))
    , m_resampler(std::make_unique<Resampler>(m_decoder->channels(), m_decoder->sampleRate(),
                                              outputRate, kMaxSamples))
    , m_inputRate(m_decoder->sampleRate())
    , m_outputRate(outputRate)
    , m_endFrame(-1)
    , m_offset(0)
    , m_primed(false) {}

// Enough as a rule for the bit reservoir and the overlap of the transform to be what they are in a
// read from the start; where it is not, fill() goes further back.
std::int64_t AudioPipeline::preRoll() const {
    return m_decoder->bitRate() / m_decoder->channels() < kLowBitRatePerChannel ? kLongPreRoll
                                                                                : kShortPreRoll;
}

// Of libswresample's filter, to one side, in input frames; measured as under 20 for the usual
// rates, and wider the further the rate goes down.
std::int64_t AudioPipeline::filterReach() const {
    return 64 * (1 + m_inputRate / m_outputRate);
}

std::int64_t AudioPipeline::fill(Buffer& request) {
    if (m_outputRate < kSmallestOutputRate || m_outputRate > kLargestOutputRate) {
        return 0; // there is no converter to it, and at 0 no positions to count
    }
    // Outputs lean on inputs to either side; those before the first one must be sound too. Before
    // the file's start there are none.
    const std::int64_t first = std::max(request.start, std::int64_t{0});
    m_neededFrom = ScalePosition(first, m_inputRate, m_outputRate) - filterReach();
    // At least one, or doubling it would lead nowhere.
    std::int64_t backoff =
        std::max(ScalePosition(preRoll(), m_outputRate, m_inputRate), std::int64_t{1});
    while (!fillFrom(backoff, request)) {
        backoff = backoff > request.start / 2 ? request.start : backoff * 2;
    }
    silenceFront(request);
    return m_filled.start == request.start ? m_filled.length : 0;
}

// False when decoding had to begin earlier for the request's samples to be exact. It never has to
// when it begins with the stream.
bool AudioPipeline::fillFrom(std::int64_t backoff, Buffer& request) {
    const bool fromTheStart = request.start <= backoff;
    seek(fromTheStart ? 0 : request.start - backoff);
    while (m_filled.End() != request.range().End()) {
        if (!decodeInto(request)) {
            drainInto(request);
            break;
        }
        if (m_begunTooLate && !fromTheStart) {
            return false;
        }
    }
    return true;
}

void AudioPipeline::seek(std::int64_t frame) {
    m_decoder->seek(ScalePosition(frame, m_inputRate, m_outputRate) + m_offset);
    m_primed = false;
    m_begunTooLate = false;
    m_filled = {};
}

// False at the end of the stream.
bool AudioPipeline::decodeInto(Buffer& request) {
    return m_decoder->decodeToFrame([&](const Buffer& decoded) {
        if (!m_primed) {
            m_resampler->restart(decoded.start, m_offset);
            m_primed = true;
        }
        if (decoded.range().End() > m_neededFrom && m_decoder->settledFrom() > m_neededFrom) {
            m_begunTooLate = true;
        }
        m_resampler->convert(decoded, [&](const Buffer& converted) { take(request, converted); });
    });
}

void AudioPipeline::drainInto(Buffer& request) {
    if (!m_primed) {
        return; // nothing was decoded since the seek; what the converter holds is an older read's
    }
    m_resampler->drain([&](const Buffer& rest) {
        take(request, rest);
        m_endFrame = rest.range().End();
    });
}

void AudioPipeline::take(Buffer& request, const Buffer& converted) {
    request.copyFrom(converted);
    if (m_filled.length != 0) {
        if (!converted.empty()) {
            m_filled = Intersect(Unite(m_filled, converted.range()), request.range());
        }
        return;
    }
    m_filled = Intersect(converted.range(), request.range());
    const bool beginsBehind =
        !converted.empty() && !request.empty() && converted.start >= request.range().End();
    if (beginsBehind) {
        // Nothing that follows can fall within the request: all of it is front.
        m_filled = {request.range().End(), 0};
    }
}

// The positions of the request before the stream's first sample are silence.
void AudioPipeline::silenceFront(Buffer& request) {
    const FrameRange front =
        Intersect(RangeBetween(request.start, m_filled.start), request.range());
    if (front.length == 0) {
        return;
    }
    request.zero(front);
    m_filled = m_filled.length == 0 ? front : Unite(front, m_filled);
}

} // namespace FFMPEGDecoder
