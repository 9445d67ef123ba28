#include "zanthe/audio/ffmpeg/WarmUp.h"

#include <algorithm>
#include <limits>

extern "C" {
#include <libavcodec/codec_par.h>
}

namespace FFMPEGDecoder {

namespace {

constexpr std::int64_t kUnsettled = std::numeric_limits<std::int64_t>::max();

// Packets with their whole reservoir that must lie before the first sound one: of MPEG-2 a packet
// is one granule, and two fill the overlap and the window.
constexpr int kOverlapPackets = 2;

constexpr int kHeaderAndChecksumBytes = 6;

} // namespace

WarmUp::WarmUp(const AVCodecParameters& stream)
    : m_reservoirBytes(0)
    , m_overheadBytes(0) {
    if (stream.codec_id == AV_CODEC_ID_MP3) {
        const bool halfRate = stream.sample_rate < 32000; // MPEG-2 and 2.5
        const bool mono = stream.ch_layout.nb_channels == 1;
        const int sideInformation = halfRate ? (mono ? 9 : 17) : (mono ? 17 : 32);
        m_reservoirBytes = halfRate ? 255 : 511;
        m_overheadBytes = kHeaderAndChecksumBytes + sideInformation;
    }
    restart();
}

void WarmUp::restart() {
    m_historyBytes = 0;
    m_packets = 0;
    m_overlapped = 0;
    m_settledFrom = kUnsettled;
}

void WarmUp::add(std::int64_t start, int bytes) {
    if (m_settledFrom != kUnsettled) {
        return;
    }
    if (start == 0 || (m_historyBytes >= m_reservoirBytes && m_overlapped == kOverlapPackets)) {
        m_settledFrom = start;
        return;
    }
    if (m_historyBytes >= m_reservoirBytes) {
        ++m_overlapped;
    }
    // The packet that the seek came down on may lack its own beginning, and with it the decoder
    // may lose its end; only those behind it count. Each counts for something, so that damaged
    // sizes end the waiting too.
    if (m_packets++ > 0) {
        m_historyBytes += std::max<std::int64_t>(bytes - m_overheadBytes, 1);
    }
}

} // namespace FFMPEGDecoder
