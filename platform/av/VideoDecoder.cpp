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

CodecContextPtr Configure(const AVCodec& codec, const AVStream& stream) {
    CodecContextPtr context(avcodec_alloc_context3(&codec));
    if (context == nullptr || avcodec_parameters_to_context(context.get(), stream.codecpar) < 0) {
        return nullptr;
    }
    context->pkt_timebase = stream.time_base;
    context->max_pixels = kMostPixels;
    // Cropping to the exact pixel; ours is to look at rows from any address.
    context->flags |= AV_CODEC_FLAG_UNALIGNED;
    context->thread_count = 0;
    return context;
}

CodecContextPtr OpenContext(const AVStream& stream, AVBufferRef* device) {
    const AVCodec* codec = FindDecoder(stream.codecpar->codec_id, device);
    CodecContextPtr context = codec == nullptr ? nullptr : Configure(*codec, stream);
    if (context == nullptr) {
        return nullptr;
    }
    if (device != nullptr) {
        context->hw_device_ctx = av_buffer_ref(device);
        context->get_format = PreferDevice;
    }
    return avcodec_open2(context.get(), codec, nullptr) < 0 ? nullptr : std::move(context);
}

} // namespace

std::unique_ptr<VideoDecoder> VideoDecoder::Open(const AVStream& stream, AVBufferRef* device) {
    CodecContextPtr context = OpenContext(stream, device);
    if (context == nullptr && device != nullptr) {
        context = OpenContext(stream, nullptr);
    }
    return context == nullptr ? nullptr
                              : std::unique_ptr<VideoDecoder>(new VideoDecoder(std::move(context)));
}

bool VideoDecoder::Send(const AVPacket& packet, std::int64_t serial, bool onlyReferenced) {
    m_context->skip_frame = onlyReferenced ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
    m_context->reordered_opaque = serial;
    return avcodec_send_packet(m_context.get(), &packet) >= 0;
}

void VideoDecoder::Finish() {
    m_context->skip_frame = AVDISCARD_DEFAULT;
    // It says AVERROR_EOF when it was told before, which is as well.
    static_cast<void>(avcodec_send_packet(m_context.get(), nullptr));
}

VideoDecoder::Result VideoDecoder::Receive(AVFrame& frame) {
    while (true) {
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
}

void VideoDecoder::Flush() {
    avcodec_flush_buffers(m_context.get());
}

} // namespace av
