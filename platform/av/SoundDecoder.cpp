#include "platform/av/SoundDecoder.h"

#include <utility>

namespace av {

namespace {

// FFmpeg's first choice for layer 2 works in integers and dithers; its other one is exact.
const AVCodec* FindDecoder(AVCodecID id) {
    const AVCodec* exact = id == AV_CODEC_ID_MP2   ? avcodec_find_decoder_by_name("mp2float")
                           : id == AV_CODEC_ID_MP1 ? avcodec_find_decoder_by_name("mp1float")
                                                   : nullptr;
    return exact != nullptr ? exact : avcodec_find_decoder(id);
}

DictionaryPtr OptionsFor(AVCodecID id) {
    AVDictionary* options = nullptr;
    if (id == AV_CODEC_ID_AC3 || id == AV_CODEC_ID_EAC3) {
        // The noise of a frame then depends on that frame alone.
        av_dict_set(&options, "cons_noisegen", "1", 0);
    }
    return DictionaryPtr(options);
}

} // namespace

std::unique_ptr<SoundDecoder> SoundDecoder::Create(const AVStream& stream) {
    const AVCodec* codec = FindDecoder(stream.codecpar->codec_id);
    ParametersPtr parameters(avcodec_parameters_alloc());
    if (codec == nullptr || parameters == nullptr ||
        avcodec_parameters_copy(parameters.get(), stream.codecpar) < 0) {
        return nullptr;
    }
    std::unique_ptr<SoundDecoder> decoder(new SoundDecoder(*codec, std::move(parameters)));
    return decoder->Restart() ? std::move(decoder) : nullptr;
}

bool SoundDecoder::Restart() {
    m_context.reset(avcodec_alloc_context3(&m_codec));
    if (m_context == nullptr ||
        avcodec_parameters_to_context(m_context.get(), m_parameters.get()) < 0) {
        return false;
    }
    m_context->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    m_context->thread_count = 1; // a segment of sound is too short to share out
    AVDictionary* options = OptionsFor(m_codec.id).release();
    const int result = avcodec_open2(m_context.get(), &m_codec, &options);
    const DictionaryPtr unused(options);
    if (result < 0) {
        m_context.reset();
    }
    return result >= 0;
}

bool SoundDecoder::Send(const AVPacket* packet) {
    return m_context != nullptr && avcodec_send_packet(m_context.get(), packet) >= 0;
}

SoundDecoder::Result SoundDecoder::Receive(AVFrame& frame) {
    if (m_context == nullptr) {
        return Result::End;
    }
    // A packet of which a part is damaged fails as often as it has parts.
    constexpr int kMostErrors = 64;
    for (int errors = 0; errors < kMostErrors; ++errors) {
        const int result = avcodec_receive_frame(m_context.get(), &frame);
        if (result >= 0) {
            return Result::Frame;
        }
        if (result == AVERROR(EAGAIN)) {
            return Result::NeedsPacket;
        }
        if (result == AVERROR_EOF) {
            return Result::End;
        }
    }
    return Result::NeedsPacket;
}

} // namespace av
