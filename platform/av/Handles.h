// Owners of FFmpeg's objects, one each. No other place in the project frees one.
//
//     FramePtr frame(av_frame_alloc());
//
// A deleter is the library's own free function, so an owner is as large as a pointer.
#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libavutil/buffer.h>
#include <libavutil/dict.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

namespace av {

// For functions of the form `void free(T** object)`, which also null the caller's pointer.
template <auto Free>
struct FreeThrough {
    template <typename T>
    void operator()(T* object) const {
        Free(&object);
    }
};

// For functions of the form `void free(T* object)`.
template <auto Free>
struct FreeDirectly {
    template <typename T>
    void operator()(T* object) const {
        Free(object);
    }
};

// avformat_close_input gives back the open file and what the demuxer allocated, then the context;
// avformat_free_context alone would keep both. It also serves a context that was never opened.
using FormatContextPtr = std::unique_ptr<AVFormatContext, FreeThrough<avformat_close_input>>;
using OutputContextPtr = std::unique_ptr<AVFormatContext, FreeDirectly<avformat_free_context>>;
using IoContextPtr = std::unique_ptr<AVIOContext, FreeThrough<avio_closep>>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, FreeThrough<avcodec_free_context>>;
using FramePtr = std::unique_ptr<AVFrame, FreeThrough<av_frame_free>>;
using PacketPtr = std::unique_ptr<AVPacket, FreeThrough<av_packet_free>>;
using DictionaryPtr = std::unique_ptr<AVDictionary, FreeThrough<av_dict_free>>;
using ParametersPtr = std::unique_ptr<AVCodecParameters, FreeThrough<avcodec_parameters_free>>;
using BitstreamFilterPtr = std::unique_ptr<AVBSFContext, FreeThrough<av_bsf_free>>;
using BufferPtr = std::unique_ptr<AVBufferRef, FreeThrough<av_buffer_unref>>;
using SwrContextPtr = std::unique_ptr<SwrContext, FreeThrough<swr_free>>;
using SwsContextPtr = std::unique_ptr<SwsContext, FreeDirectly<sws_freeContext>>;

} // namespace av
