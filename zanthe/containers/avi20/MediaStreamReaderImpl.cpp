#include "zanthe/containers/avi20/MediaStreamReaderImpl.h"

#include <utility>

namespace AVI20::Read {

MediaStreamReaderImpl::MediaStreamReaderImpl(IStream* stream, StreamInfo info,
                                             std::uint64_t moviStart)
    : m_info(std::move(info))
    , m_frames(stream, m_info.indexChunk, moviStart) {}

double MediaStreamReaderImpl::DurationSeconds() const {
    const AVIStreamHeader& header = m_info.header;
    if (header.fccType == FourCc("vids")) {
        const double rate = static_cast<double>(header.dwRate) / header.dwScale;
        return m_frames.GetFrameCount() / rate;
    }
    return header.fccType == FourCc("auds") ? AudioSeconds() : 0.0;
}

double MediaStreamReaderImpl::AudioSeconds() const {
    const WAVEFORMATEX& format = m_info.audioFormat;
    const std::uint64_t bytes = m_frames.GetTotalBytes();
    if (format.wFormatTag != WAVE_FORMAT_PCM) {
        return static_cast<double>(bytes) / format.nAvgBytesPerSec;
    }
    if (format.nBlockAlign == 0) {
        return 0.0;
    }
    const std::uint64_t blocks = bytes / format.nBlockAlign; // whole ones
    return static_cast<double>(blocks) / format.nSamplesPerSec;
}

} // namespace AVI20::Read
