#include "zanthe/audio/ffmpeg/WarmUp.h"

#include <algorithm>
#include <limits>

extern "C" {
#include <libavcodec/codec_par.h>
}

namespace FFMPEGDecoder {

namespace {

constexpr std::int64_t kUnsettled = std::numeric_limits<std::int64_t>::max();

constexpr int kHeaderAndChecksumBytes = 6;

} // namespace

WarmUp::WarmUp(const AVCodecParameters& stream) {
    if (stream.codec_id == AV_CODEC_ID_MP3) {
        const bool halfRate = stream.sample_rate < 32000; // MPEG-2 and 2.5
        const bool mono = stream.ch_layout.nb_channels == 1;
        const int sideInformation = halfRate ? (mono ? 9 : 17) : (mono ? 17 : 32);
        m_overlapPackets = halfRate ? 2 : 1; // of one granule each, or of two
        m_reservoirBytes = halfRate ? 255 : 511;
        m_overheadBytes = kHeaderAndChecksumBytes + sideInformation;
    }
    restart();
}

void WarmUp::restart() {
    m_historyBytes = 0;
    m_wholePackets = 0;
    m_settledFrom = kUnsettled;
}

void WarmUp::add(std::int64_t start, int bytes) {
    if (m_settledFrom != kUnsettled) {
        return;
    }
    const bool whole = m_historyBytes >= m_reservoirBytes;
    if (start == 0 || (whole && m_wholePackets == m_overlapPackets)) {
        m_settledFrom = start;
        return;
    }
    m_wholePackets += whole ? 1 : 0;
    // Each counts for something, so that damaged sizes end the waiting too.
    m_historyBytes += std::max<std::int64_t>(bytes - m_overheadBytes, 1);
}

} // namespace FFMPEGDecoder
