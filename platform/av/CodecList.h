// What codecs there are, and whether one starts.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/av/Handles.h"

namespace av {

enum class CodecUse { Decode, Encode };

struct VideoCodec {
    std::string name; // FFmpeg's own
    AVCodecID id = AV_CODEC_ID_NONE;
    bool onDevice = false; // works on a graphics device only
};

// Those for pictures, the software ones first; AV_CODEC_ID_NONE stands for all.
// Thread-safety: safe from any thread.
std::vector<VideoCodec> ListVideoCodecs(CodecUse use, AVCodecID id);

// The codec, started as for a small picture; null where it does not start here.
// Thread-safety: safe from any thread.
CodecContextPtr StartCodec(const std::string& name, CodecUse use);

} // namespace av
