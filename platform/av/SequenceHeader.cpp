#include "platform/av/SequenceHeader.h"

namespace av {

namespace {

// The library's filter from stored samples to a byte stream; null for codecs that need none.
const AVBitStreamFilter* FilterFor(AVCodecID codec) {
    switch (codec) {
    case AV_CODEC_ID_H264:
        return av_bsf_get_by_name("h264_mp4toannexb");
    case AV_CODEC_ID_HEVC:
        return av_bsf_get_by_name("hevc_mp4toannexb");
    default:
        return nullptr;
    }
}

std::vector<std::uint8_t> ExtraData(const AVCodecParameters& parameters) {
    if (parameters.extradata == nullptr || parameters.extradata_size <= 0) {
        return {};
    }
    return {parameters.extradata, parameters.extradata + parameters.extradata_size};
}

} // namespace

std::vector<std::uint8_t> SequenceHeaderOf(const AVCodecParameters& parameters) {
    const AVBitStreamFilter* filter = FilterFor(parameters.codec_id);
    if (filter == nullptr) {
        return ExtraData(parameters);
    }
    AVBSFContext* raw = nullptr;
    if (av_bsf_alloc(filter, &raw) < 0) {
        return {};
    }
    // Its initialisation converts the record, and passes on what is a byte stream already.
    const BitstreamFilterPtr context(raw);
    if (avcodec_parameters_copy(raw->par_in, &parameters) < 0 || av_bsf_init(raw) < 0) {
        return {};
    }
    return ExtraData(*raw->par_out);
}

} // namespace av
