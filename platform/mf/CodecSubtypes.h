// The subtypes of compressed pictures, by codec.
#pragma once

#include <string>

#include "platform/av/VideoStream.h"
#include "platform/com/Guid.h"

namespace mf {

// The subtype of a stream in a file of `container` (FFmpeg's name of it). A codec that has none of
// its own is told by its four-character code, and without one by the first characters of FFmpeg's
// name in capitals.
GUID SubtypeOf(const av::VideoFacts& facts, const std::string& container);

// The first four characters of FFmpeg's name of the codec, in capitals.
GUID SubtypeOfName(AVCodecID codec);

// The codec of a subtype; AV_CODEC_ID_NONE for one that is no codec's.
AVCodecID CodecOf(REFGUID subtype);

} // namespace mf
