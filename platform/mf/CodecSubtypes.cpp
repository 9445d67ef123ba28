#include "platform/mf/CodecSubtypes.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "platform/mf/MediaFormats.h"

namespace mf {

namespace {

struct Entry {
    AVCodecID codec;
    GUID subtype;
};

// The first entry of a codec is the subtype of its streams; all of them lead to it.
constexpr std::array kEntries = {
    Entry{AV_CODEC_ID_H264, MFVideoFormat_H264},
    Entry{AV_CODEC_ID_H264, MFVideoFormat_H264_ES},
    Entry{AV_CODEC_ID_HEVC, MFVideoFormat_HEVC},
    Entry{AV_CODEC_ID_HEVC, MFVideoFormat_HEVC_ES},
    Entry{AV_CODEC_ID_MPEG4, MFVideoFormat_MP4V},
    Entry{AV_CODEC_ID_MPEG4, MFVideoFormat_M4S2},
    Entry{AV_CODEC_ID_MSMPEG4V3, MFVideoFormat_MP43},
    Entry{AV_CODEC_ID_H263, MFVideoFormat_H263},
    Entry{AV_CODEC_ID_WMV1, MFVideoFormat_WMV1},
    Entry{AV_CODEC_ID_WMV2, MFVideoFormat_WMV2},
    Entry{AV_CODEC_ID_WMV3, MFVideoFormat_WMV3},
    Entry{AV_CODEC_ID_VC1, MFVideoFormat_WVC1},
    Entry{AV_CODEC_ID_MPEG1VIDEO, MFVideoFormat_MPG1},
    Entry{AV_CODEC_ID_MPEG2VIDEO, MFVideoFormat_MPEG2},
    Entry{AV_CODEC_ID_DVVIDEO, MFVideoFormat_DVSD},
    Entry{AV_CODEC_ID_MJPEG, MFVideoFormat_MJPG},
    Entry{AV_CODEC_ID_VP8, MFVideoFormat_VP80},
    Entry{AV_CODEC_ID_VP9, MFVideoFormat_VP90},
    Entry{AV_CODEC_ID_AV1, MFVideoFormat_AV1},
};

// Containers that hold the codec's own stream of bytes, start codes and all.
bool HoldsElementaryStreams(const std::string& container) {
    constexpr std::array<std::string_view, 4> kNames = {"h264", "hevc", "mpegts", "mpeg"};
    return std::find(kNames.begin(), kNames.end(), container) != kNames.end();
}

// The codes under which ASF files, and AVI files made from them, hold MPEG-4 part 2.
bool IsAsfStyleMpeg4(std::uint32_t tag) {
    return tag == MKTAG('M', '4', 'S', '2') || tag == MKTAG('m', '4', 's', '2') ||
           tag == MKTAG('M', 'P', '4', 'S') || tag == MKTAG('m', 'p', '4', 's');
}

} // namespace

GUID SubtypeOfName(AVCodecID codec) {
    std::string name = avcodec_get_name(codec);
    name.resize(4, ' ');
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return CodedSubtype(std::string_view(name));
}

GUID SubtypeOf(const av::VideoFacts& facts, const std::string& container) {
    if (facts.codec == AV_CODEC_ID_H264 && HoldsElementaryStreams(container)) {
        return MFVideoFormat_H264_ES;
    }
    if (facts.codec == AV_CODEC_ID_HEVC && HoldsElementaryStreams(container)) {
        return MFVideoFormat_HEVC_ES;
    }
    if (facts.codec == AV_CODEC_ID_MPEG4 && IsAsfStyleMpeg4(facts.tag)) {
        return MFVideoFormat_M4S2;
    }
    const auto* const found =
        std::find_if(kEntries.begin(), kEntries.end(),
                     [&](const Entry& entry) { return entry.codec == facts.codec; });
    if (found != kEntries.end()) {
        return found->subtype;
    }
    return facts.tag != 0 ? CodedSubtype(facts.tag) : SubtypeOfName(facts.codec);
}

AVCodecID CodecOf(REFGUID subtype) {
    const auto* const found =
        std::find_if(kEntries.begin(), kEntries.end(),
                     [&](const Entry& entry) { return entry.subtype == subtype; });
    return found == kEntries.end() ? AV_CODEC_ID_NONE : found->codec;
}

} // namespace mf
