#include "zanthe/audio/ffmpeg/CodecStage.h"

#include <limits>
#include <stdexcept>
#include <string>

#include "zanthe/audio/ffmpeg/FrameRange.h"

namespace FFMPEGDecoder {

namespace {

constexpr AVSampleFormat kSampleFormat = AV_SAMPLE_FMT_FLTP;

bool DecodesToPlanarFloat(const AVCodec& codec) {
    for (const AVSampleFormat* format = codec.sample_fmts; format != nullptr && *format != -1;
         ++format) {
        if (*format == kSampleFormat) {
            return true;
        }
    }
    return false;
}

// FFmpeg's own choice, unless only another decoder of the same codec delivers planar float: MPEG
// layers 1 and 2, which do turn up in files named .mp3, have their integer decoder listed first.
const AVCodec* FindDecoder(AVCodecID id) {
    const AVCodec* preferred = avcodec_find_decoder(id);
    if (preferred == nullptr || DecodesToPlanarFloat(*preferred)) {
        return preferred;
    }
    void* position = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&position)) {
        if (codec->id == id && av_codec_is_decoder(codec) != 0 && DecodesToPlanarFloat(*codec)) {
            return codec;
        }
    }
    return preferred;
}

[[noreturn]] void ThrowUnexpected(int error) {
    throw std::runtime_error("Decoder::decodeToFrame - Unexpected error: " + std::to_string(error));
}

AVRational UsableTimeBase(AVRational timeBase) {
    return timeBase.den == 0 ? AVRational{1, 1000000} : timeBase;
}

} // namespace

FrameClock::FrameClock(const AVStream& stream)
    : m_timeBase(UsableTimeBase(stream.time_base))
    , m_rate(stream.codecpar->sample_rate)
    , m_ticksPerFrame(0) {
    if (m_rate > 0 && m_rate <= kLargestRate && m_timeBase.num > 0 &&
        m_timeBase.num <= std::numeric_limits<int>::max() / m_rate) {
        m_ticksPerFrame = m_timeBase.den / (m_rate * m_timeBase.num);
    }
    if (m_ticksPerFrame <= 0) {
        throw std::runtime_error("Decoder() - receiveParameters failed");
    }
}

std::int64_t FrameClock::timestampOfFrame(std::int64_t frame) const {
    return ScalePosition(frame, m_timeBase.den, static_cast<std::int64_t>(m_timeBase.num) * m_rate);
}

CodecStage::CodecStage(const AVStream& stream, std::int64_t startSkip)
    : m_stream(stream)
    , m_codec(FindDecoder(stream.codecpar->codec_id))
    , m_startSkip(startSkip) {
    if (m_codec == nullptr) {
        throw std::runtime_error("Decoder() - couldn't find codec");
    }
    open();
}

void CodecStage::open() {
    m_context.reset(avcodec_alloc_context3(m_codec));
    if (!m_context) {
        throw std::runtime_error("CodecContext: avcodec_alloc_context3 failed");
    }
    if (m_stream.codecpar->ch_layout.nb_channels <= 0 ||
        avcodec_parameters_to_context(m_context.get(), m_stream.codecpar) != 0) {
        throw std::runtime_error("Decoder() - receiveParameters failed");
    }
    m_context->request_sample_fmt = kSampleFormat;
    // The decoder would drop the encoder's delay and padding by itself, and with it whole frames of
    // the short MPEG-2 kind, so that a packet gives nothing, which this road takes for the end of
    // the stream. So every packet keeps its frame here, and the frame's ends are cut by position.
    m_context->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    if (avcodec_open2(m_context.get(), m_codec, nullptr) != 0 || !DecodesToPlanarFloat(*m_codec)) {
        throw std::runtime_error("Decoder() - open failed");
    }
}

// avcodec_flush_buffers leaves traces in FFmpeg's MPEG audio decoders: scale factors and allocation
// tables of an earlier frame, which a stream cut out of a longer one leans on in its first frames.
// A decoder opened afresh has none, and costs little: its tables are the process's.
void CodecStage::flush() {
    open();
}

void CodecStage::send(const AVPacket& packet) {
    if (avcodec_send_packet(m_context.get(), &packet) != 0) {
        throw std::runtime_error("Error sending packet");
    }
}

bool CodecStage::receive(AVFrame& frame) {
    const int result = avcodec_receive_frame(m_context.get(), &frame);
    if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
        return false;
    }
    if (result < 0) {
        ThrowUnexpected(result);
    }
    if (frame.format != kSampleFormat) {
        ThrowUnexpected(AVERROR_INVALIDDATA);
    }
    return true;
}

} // namespace FFMPEGDecoder
