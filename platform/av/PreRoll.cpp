#include "platform/av/PreRoll.h"

#include <algorithm>
#include <array>

namespace av {

namespace {

struct Entry {
    AVCodecID codec;
    std::int64_t packets;
};

// The transform's overlap is one packet; one more costs little. What has filters or predictors with
// an endless memory gets as many as make the difference inaudible.
constexpr std::array kEntries = {
    Entry{AV_CODEC_ID_FLAC, 0},          Entry{AV_CODEC_ID_ALAC, 0},
    Entry{AV_CODEC_ID_WAVPACK, 0},       Entry{AV_CODEC_ID_TTA, 0},
    Entry{AV_CODEC_ID_DTS, 1},           Entry{AV_CODEC_ID_ADPCM_MS, 0},
    Entry{AV_CODEC_ID_ADPCM_IMA_WAV, 0}, Entry{AV_CODEC_ID_ADPCM_IMA_QT, 0},
    Entry{AV_CODEC_ID_AC3, 2},           Entry{AV_CODEC_ID_EAC3, 2},
    Entry{AV_CODEC_ID_MP1, 2},           Entry{AV_CODEC_ID_MP2, 2},
    Entry{AV_CODEC_ID_VORBIS, 2},        Entry{AV_CODEC_ID_WMAV1, 16},
    Entry{AV_CODEC_ID_WMAV2, 16},        Entry{AV_CODEC_ID_WMAPRO, 16},
    Entry{AV_CODEC_ID_OPUS, 16},         Entry{AV_CODEC_ID_AMR_NB, 32},
    Entry{AV_CODEC_ID_AMR_WB, 32},       Entry{AV_CODEC_ID_WMAVOICE, 32},
    Entry{AV_CODEC_ID_TRUEHD, 256},      Entry{AV_CODEC_ID_MLP, 256},
};

constexpr std::int64_t kOtherPackets = 12;

bool IsPcm(AVCodecID codec) {
    return codec >= AV_CODEC_ID_FIRST_AUDIO && codec < AV_CODEC_ID_ADPCM_IMA_QT;
}

// Spectral band replication carries its noise and its envelopes on; FFmpeg tells it by the length
// of a packet. Long-term prediction leans on what it has predicted.
std::int64_t PacketsOfAac(const AVCodecParameters& stream) {
    constexpr int kLongTermPrediction = 3;
    const bool doubled = stream.frame_size > 1024;
    return doubled || stream.profile == kLongTermPrediction ||
                   stream.profile == FF_PROFILE_AAC_HE || stream.profile == FF_PROFILE_AAC_HE_V2
               ? 16
               : 3;
}

std::int64_t PacketsFor(const AVCodecParameters& stream) {
    if (IsPcm(stream.codec_id)) {
        return 0;
    }
    if (stream.codec_id == AV_CODEC_ID_AAC || stream.codec_id == AV_CODEC_ID_AAC_LATM) {
        return PacketsOfAac(stream);
    }
    const auto* const found =
        std::find_if(kEntries.begin(), kEntries.end(),
                     [&](const Entry& entry) { return entry.codec == stream.codec_id; });
    return found == kEntries.end() ? kOtherPackets : found->packets;
}

} // namespace

PreRoll::PreRoll(const AVCodecParameters& stream)
    : m_packets(PacketsFor(stream)) {
    if (stream.codec_id == AV_CODEC_ID_MP3) {
        constexpr int kHeaderAndChecksumBytes = 6;
        const bool halfRate = stream.sample_rate < 32000; // MPEG-2 and 2.5
        const bool mono = stream.ch_layout.nb_channels == 1;
        const int sideInformation = halfRate ? (mono ? 9 : 17) : (mono ? 17 : 32);
        m_packets = halfRate ? 3 : 2; // of one granule each, or of two
        m_reservoirBytes = halfRate ? 255 : 511;
        m_overheadBytes = kHeaderAndChecksumBytes + sideInformation;
    }
}

std::int64_t PreRoll::UsualPackets() const {
    return m_reservoirBytes == 0 ? m_packets : m_packets + 8;
}

std::size_t PreRoll::PacketsOf(const std::deque<int>& sizes) const {
    constexpr std::size_t kMost = 1024; // damaged sizes end too
    auto count = static_cast<std::size_t>(m_packets);
    std::int64_t missing = m_reservoirBytes;
    while (missing > 0 && count < sizes.size() && count < kMost) {
        missing -= std::max<std::int64_t>(sizes[sizes.size() - 1 - count] - m_overheadBytes, 1);
        ++count;
    }
    return missing > 0 && count < kMost ? std::max(count, sizes.size() + 1) : count;
}

} // namespace av
