#include "platform/av/VideoDecoder.h"

#include <utility>

extern "C" {
#include <libavutil/hwcontext.h>
}

namespace av {

namespace {

// The largest picture that is decoded: 16K (15360 x 8640) is. A header can promise any.
constexpr std::int64_t kMostPixels = std::int64_t{1} << 27;

// The pixel format of pictures on the context's device, or none.
AVPixelFormat DeviceFormat(const AVCodec& codec, const AVBufferRef& device) {
    const auto type = reinterpret_cast<const AVHWDeviceContext*>(device.data)->type; // NOLINT
    for (int i = 0; const AVCodecHWConfig* config = avcodec_get_hw_config(&codec, i); ++i) {
        if ((config->methods & AV_CODEC_HW_CONFIG_METHOD_HW_DEVICE_CTX) != 0 &&
            config->device_type == type) {
            return config->pix_fmt;
        }
    }
    return AV_PIX_FMT_NONE;
}

// Asked again, without the device's format among those offered, when the device cannot do it: then
// the picture comes in memory.
AVPixelFormat PreferDevice(AVCodecContext* context, const AVPixelFormat* offered) {
    const AVPixelFormat wanted = DeviceFormat(*context->codec, *context->hw_device_ctx);
    for (const AVPixelFormat* format = offered; *format != AV_PIX_FMT_NONE; ++format) {
        if (*format == wanted) {
            return wanted;
        }
    }
    return avcodec_default_get_format(context, offered);
}

// A codec's first decoder may not know the device, but another one may (AV1).
const AVCodec* FindDecoder(AVCodecID id, const AVBufferRef* device) {
    void* position = nullptr;
    while (const AVCodec* codec = device == nullptr ? nullptr : av_codec_iterate(&position)) {
        if (codec->id == id && av_codec_is_decoder(codec) != 0 &&
            DeviceFormat(*codec, *device) != AV_PIX_FMT_NONE) {
            return codec;
        }
    }
    return avcodec_find_decoder(id);
}

CodecContextPtr Configure(const AVCodec& codec, const AVCodecParameters& parameters) {
    CodecContextPtr context(avcodec_alloc_context3(&codec));
    if (context == nullptr || avcodec_parameters_to_context(context.get(), &parameters) < 0) {
        return nullptr;
    }
    context->max_pixels = kMostPixels;
    // Crops to the exact pixel; rows may then begin at any address.
    context->flags |= AV_CODEC_FLAG_UNALIGNED;
    context->thread_count = 0;
    return context;
}

CodecContextPtr OpenOn(const AVCodecParameters& parameters, AVRational timeBase,
                       AVBufferRef* device) {
    const AVCodec* codec = FindDecoder(parameters.codec_id, device);
    CodecContextPtr context = codec == nullptr ? nullptr : Configure(*codec, parameters);
    if (context == nullptr) {
        return nullptr;
    }
    context->pkt_timebase = timeBase;
    if (device != nullptr) {
        context->hw_device_ctx = av_buffer_ref(device);
        context->get_format = PreferDevice;
    }
    return avcodec_open2(context.get(), codec, nullptr) < 0 ? nullptr : std::move(context);
}

} // namespace

std::unique_ptr<VideoDecoder> VideoDecoder::Open(const AVStream& stream, AVBufferRef* device) {
    std::unique_ptr<VideoDecoder> decoder(new VideoDecoder);
    decoder->m_parameters.reset(avcodec_parameters_alloc());
    decoder->m_timeBase = stream.time_base;
    decoder->m_device.reset(device == nullptr ? nullptr : av_buffer_ref(device));
    if (decoder->m_parameters == nullptr ||
        avcodec_parameters_copy(decoder->m_parameters.get(), stream.codecpar) < 0) {
        return nullptr;
    }
    return decoder->OpenContext() ? std::move(decoder) : nullptr;
}

bool VideoDecoder::OpenContext() {
    CodecContextPtr context = OpenOn(*m_parameters, m_timeBase, m_device.get());
    if (context == nullptr && m_device != nullptr) {
        m_device.reset();
        context = OpenOn(*m_parameters, m_timeBase, nullptr);
    }
    if (context == nullptr) {
        return false;
    }
    m_context = std::move(context);
    m_fresh = true;
    return true;
}

bool VideoDecoder::Send(const AVPacket& packet, std::int64_t serial, bool onlyReferenced) {
    m_context->skip_frame = onlyReferenced ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
    m_context->reordered_opaque = serial;
    m_fresh = false;
    return avcodec_send_packet(m_context.get(), &packet) >= 0;
}

void VideoDecoder::Finish() {
    m_context->skip_frame = AVDISCARD_DEFAULT;
    // It says AVERROR_EOF when it was told before, which is as well.
    static_cast<void>(avcodec_send_packet(m_context.get(), nullptr));
}

VideoDecoder::Result VideoDecoder::Receive(AVFrame& frame) {
    constexpr int kMostErrors = 1000; // one packet causes but a few
    for (int errors = 0; errors < kMostErrors; ++errors) {
        const int result = avcodec_receive_frame(m_context.get(), &frame);
        if (result >= 0) {
            ++m_framesDecoded;
            return Result::Frame;
        }
        if (result == AVERROR_EOF) {
            return Result::Ended;
        }
        if (result == AVERROR(EAGAIN)) {
            return Result::NeedsInput;
        }
    }
    return Result::Ended;
}

void VideoDecoder::Flush() {
    avcodec_flush_buffers(m_context.get());
}

bool VideoDecoder::Reset() {
    if (m_fresh || OpenContext()) {
        return true;
    }
    Flush();
    return false;
}

} // namespace av
