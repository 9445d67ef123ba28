#include "zanthe/audio/ffmpeg/PacketReader.h"

#include <stdexcept>

#include "platform/av/OpenInput.h"
#include "platform/win32/Path.h"

namespace FFMPEGDecoder {

PacketReader::PacketReader(const std::string& path)
    : m_formatContext(avformat_alloc_context())
    , m_path(path) {
    open();
    takeFirstAudioStream();
}

void PacketReader::open() {
    if (av::OpenInput(m_formatContext, win32::ExistingPath(m_path)) != 0) {
        throw std::runtime_error("PacketReader() - m_formatContext->openInput failed");
    }
    if (avformat_find_stream_info(m_formatContext.get(), nullptr) != 0) {
        throw std::runtime_error("PacketReader() - m_formatContext->findStreamInfo failed");
    }
}

void PacketReader::takeFirstAudioStream() {
    const auto streams = static_cast<int>(m_formatContext->nb_streams);
    int index = 0;
    while (index < streams &&
           m_formatContext->streams[index]->codecpar->codec_type != AVMEDIA_TYPE_AUDIO) {
        ++index;
    }
    if (index == streams) {
        throw std::runtime_error("PacketReader() - No audio stream exists");
    }
    m_streamIndex = index;
    m_stream = m_formatContext->streams[index];
    if (m_stream == nullptr) {
        throw std::runtime_error("PacketReader() - m_formatContext->getStream failed");
    }
}

int PacketReader::read(AVPacket& packet) {
    int packetsRead = 0;
    while (av_read_frame(m_formatContext.get(), &packet) == 0) {
        ++packetsRead;
        if (packet.stream_index == m_streamIndex) {
            break;
        }
        av_packet_unref(&packet);
    }
    return packetsRead;
}

void PacketReader::seek(std::int64_t timestamp) {
    av_seek_frame(m_formatContext.get(), m_streamIndex, timestamp, AVSEEK_FLAG_BACKWARD);
}

} // namespace FFMPEGDecoder
