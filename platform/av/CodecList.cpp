#include "platform/av/CodecList.h"

#include <algorithm>

namespace av {

namespace {

bool Serves(const AVCodec& codec, CodecUse use) {
    return (use == CodecUse::Decode ? av_codec_is_decoder(&codec) : av_codec_is_encoder(&codec)) !=
           0;
}

bool IsOnDevice(const AVCodec& codec) {
    return (codec.capabilities & AV_CODEC_CAP_HARDWARE) != 0;
}

// A size and a rate that every encoder takes.
void DescribeSmallPicture(AVCodecContext& context, const AVCodec& codec) {
    context.width = 352;
    context.height = 288;
    context.time_base = {1, 25};
    context.framerate = {25, 1};
    context.pix_fmt = codec.pix_fmts != nullptr ? codec.pix_fmts[0] : AV_PIX_FMT_YUV420P;
}

} // namespace

std::vector<VideoCodec> ListVideoCodecs(CodecUse use, AVCodecID id) {
    std::vector<VideoCodec> codecs;
    void* position = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&position)) {
        if (codec->type == AVMEDIA_TYPE_VIDEO && Serves(*codec, use) &&
            (id == AV_CODEC_ID_NONE || codec->id == id)) {
            codecs.push_back({codec->name, codec->id, IsOnDevice(*codec)});
        }
    }
    std::stable_partition(codecs.begin(), codecs.end(),
                          [](const VideoCodec& codec) { return !codec.onDevice; });
    return codecs;
}

CodecContextPtr StartCodec(const std::string& name, CodecUse use) {
    const AVCodec* codec = use == CodecUse::Decode ? avcodec_find_decoder_by_name(name.c_str())
                                                   : avcodec_find_encoder_by_name(name.c_str());
    CodecContextPtr context(codec == nullptr ? nullptr : avcodec_alloc_context3(codec));
    if (context == nullptr) {
        return nullptr;
    }
    DescribeSmallPicture(*context, *codec);
    context->thread_count = 1;
    return avcodec_open2(context.get(), codec, nullptr) < 0 ? nullptr : std::move(context);
}

} // namespace av
