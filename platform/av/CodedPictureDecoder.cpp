#include "platform/av/CodedPictureDecoder.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

extern "C" {
#include <libavutil/imgutils.h>
}

#include "platform/av/Quiet.h"

namespace av {

namespace {

// As for files: 16K is below it.
constexpr std::int64_t kMostPixels = std::int64_t{1} << 27;

// FFmpeg's mark for uncompressed rows that start at the bottom, in the place of a codec's own data;
// the zero belongs to it.
constexpr std::string_view kBottomRowFirst("BottomUp", 9);

// The codec of the code, or none.
AVCodecID CodecOf(std::uint32_t tag) {
    const AVCodecTag* const tables[] = {avformat_get_riff_video_tags(), nullptr};
    return tag == 0 ? AV_CODEC_ID_RAWVIDEO : av_codec_get_id(tables, tag);
}

bool GiveExtraData(AVCodecContext& context, std::string_view data) {
    context.extradata =
        static_cast<std::uint8_t*>(av_mallocz(data.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (context.extradata == nullptr) {
        return false;
    }
    std::memcpy(context.extradata, data.data(), data.size());
    context.extradata_size = static_cast<int>(data.size());
    return true;
}

bool Configure(AVCodecContext& context, const CodedPictureFormat& format) {
    context.codec_tag = format.tag;
    context.width = context.coded_width = format.width;
    context.height = context.coded_height = format.height;
    context.bits_per_coded_sample = format.bitsPerPixel;
    context.max_pixels = kMostPixels;
    // Threads over frames would hold pictures back, and so would B-pictures put into order.
    context.thread_type = FF_THREAD_SLICE;
    context.thread_count = 0;
    context.flags |= AV_CODEC_FLAG_LOW_DELAY;
    return context.codec_id != AV_CODEC_ID_RAWVIDEO || !format.bottomRowFirst ||
           GiveExtraData(context, kBottomRowFirst);
}

} // namespace

bool DecodesTag(std::uint32_t tag) {
    return avcodec_find_decoder(CodecOf(tag)) != nullptr;
}

std::unique_ptr<CodedPictureDecoder> CodedPictureDecoder::Open(const CodedPictureFormat& format) {
    QuietUnlessChosen();
    const AVCodec* codec = avcodec_find_decoder(CodecOf(format.tag));
    if (codec == nullptr ||
        av_image_check_size(static_cast<unsigned>(std::max(format.width, 0)),
                            static_cast<unsigned>(std::max(format.height, 0)), 0, nullptr) < 0) {
        return nullptr;
    }
    CodecContextPtr context(avcodec_alloc_context3(codec));
    if (context == nullptr || !Configure(*context, format) ||
        avcodec_open2(context.get(), codec, nullptr) < 0) {
        return nullptr;
    }
    std::unique_ptr<CodedPictureDecoder> decoder(new CodedPictureDecoder(std::move(context)));
    return decoder->m_packet == nullptr ? nullptr : std::move(decoder);
}

CodedPictureDecoder::CodedPictureDecoder(CodecContextPtr context)
    : m_context(std::move(context))
    , m_packet(av_packet_alloc()) {}

CodedPictureResult CodedPictureDecoder::Decode(std::span<const std::uint8_t> bytes, bool keyFrame,
                                               PicturePtr& picture) {
    FramePtr frame(av_frame_alloc());
    if (frame == nullptr || !Send(bytes, keyFrame)) {
        return CodedPictureResult::Failed;
    }
    const int result = avcodec_receive_frame(m_context.get(), frame.get());
    if (result == AVERROR(EAGAIN)) {
        return CodedPictureResult::Unchanged;
    }
    if (result < 0) {
        return CodedPictureResult::Failed;
    }
    picture = std::make_shared<Picture>(std::move(frame), 0, 1);
    return CodedPictureResult::Picture;
}

bool CodedPictureDecoder::Send(std::span<const std::uint8_t> bytes, bool keyFrame) {
    // No bytes at all would tell the decoder that the stream has ended.
    if (bytes.empty() ||
        bytes.size() > std::numeric_limits<int>::max() - AV_INPUT_BUFFER_PADDING_SIZE ||
        av_new_packet(m_packet.get(), static_cast<int>(bytes.size())) < 0) {
        return false;
    }
    std::copy(bytes.begin(), bytes.end(), m_packet->data);
    m_packet->flags = keyFrame ? AV_PKT_FLAG_KEY : 0;
    // A picture that nobody fetched, after a failure, would stand in the way.
    int result = avcodec_send_packet(m_context.get(), m_packet.get());
    if (result == AVERROR(EAGAIN)) {
        avcodec_flush_buffers(m_context.get());
        result = avcodec_send_packet(m_context.get(), m_packet.get());
    }
    av_packet_unref(m_packet.get());
    return result >= 0;
}

} // namespace av
