#include "platform/av/StreamFacts.h"

#include <cstdint>

namespace av {

TrackKind KindOf(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    if (type == AVMEDIA_TYPE_VIDEO) {
        return TrackKind::Video;
    }
    return type == AVMEDIA_TYPE_AUDIO ? TrackKind::Audio : TrackKind::Other;
}

std::string CodecOf(const AVStream& stream) {
    const std::uint32_t tag = stream.codecpar->codec_tag;
    if (tag == 0) {
        return {};
    }
    std::string text;
    for (int shift = 0; shift < 32; shift += 8) {
        text += static_cast<char>(tag >> shift & 0xFF);
    }
    return text;
}

bool IsCover(const AVStream& stream) {
    // A track of chapter pictures is flagged as a cover too, but it is a track.
    const int marks =
        stream.disposition & (AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS);
    return marks == AV_DISPOSITION_ATTACHED_PIC;
}

} // namespace av
