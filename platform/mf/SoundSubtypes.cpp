#include "platform/mf/SoundSubtypes.h"

#include <algorithm>
#include <array>

#include "platform/mf/CodecSubtypes.h"
#include "platform/mf/MediaFormats.h"

namespace mf {

namespace {

struct Entry {
    AVCodecID codec;
    GUID subtype;
};

constexpr GUID kALaw = CodedSubtype(6);
constexpr GUID kMuLaw = CodedSubtype(7);

constexpr std::array kEntries = {
    Entry{AV_CODEC_ID_PCM_ALAW, kALaw},
    Entry{AV_CODEC_ID_PCM_MULAW, kMuLaw},
    Entry{AV_CODEC_ID_AAC, MFAudioFormat_AAC},
    Entry{AV_CODEC_ID_MP3, MFAudioFormat_MP3},
    Entry{AV_CODEC_ID_MP2, MFAudioFormat_MPEG},
    Entry{AV_CODEC_ID_MP1, MFAudioFormat_MPEG},
    Entry{AV_CODEC_ID_AC3, MFAudioFormat_Dolby_AC3},
    Entry{AV_CODEC_ID_EAC3, MFAudioFormat_Dolby_DDPlus},
    Entry{AV_CODEC_ID_DTS, MFAudioFormat_DTS},
    Entry{AV_CODEC_ID_ALAC, MFAudioFormat_ALAC},
    Entry{AV_CODEC_ID_FLAC, MFAudioFormat_FLAC},
    Entry{AV_CODEC_ID_OPUS, MFAudioFormat_Opus},
    Entry{AV_CODEC_ID_AMR_NB, MFAudioFormat_AMR_NB},
    Entry{AV_CODEC_ID_AMR_WB, MFAudioFormat_AMR_WB},
    Entry{AV_CODEC_ID_WMAV1, CodedSubtype(0x160)},
    Entry{AV_CODEC_ID_WMAV2, MFAudioFormat_WMAudioV8},
    Entry{AV_CODEC_ID_WMAPRO, MFAudioFormat_WMAudioV9},
    Entry{AV_CODEC_ID_WMALOSSLESS, MFAudioFormat_WMAudio_Lossless},
    Entry{AV_CODEC_ID_WMAVOICE, MFAudioFormat_MSP1},
};

bool IsFloat(AVCodecID codec) {
    return codec == AV_CODEC_ID_PCM_F32LE || codec == AV_CODEC_ID_PCM_F32BE ||
           codec == AV_CODEC_ID_PCM_F64LE || codec == AV_CODEC_ID_PCM_F64BE;
}

bool IsLaw(AVCodecID codec) {
    return codec == AV_CODEC_ID_PCM_ALAW || codec == AV_CODEC_ID_PCM_MULAW ||
           codec == AV_CODEC_ID_PCM_VIDC;
}

} // namespace

bool IsSoundInMemory(const av::FileStream& stream) {
    return stream.codec >= AV_CODEC_ID_FIRST_AUDIO && stream.codec < AV_CODEC_ID_ADPCM_IMA_QT &&
           !IsLaw(stream.codec);
}

GUID SoundSubtypeOf(const av::FileStream& stream) {
    if (IsSoundInMemory(stream)) {
        return IsFloat(stream.codec) ? MFAudioFormat_Float : MFAudioFormat_PCM;
    }
    const auto* const found =
        std::find_if(kEntries.begin(), kEntries.end(),
                     [&](const Entry& entry) { return entry.codec == stream.codec; });
    if (found != kEntries.end()) {
        return found->subtype;
    }
    return stream.tag != 0 ? CodedSubtype(stream.tag) : SubtypeOfName(stream.codec);
}

} // namespace mf
