#include "zanthe/audio/ffmpeg/Decoder.h"

#include <algorithm>
#include <limits>
#include <new>

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace FFMPEGDecoder {

namespace {

av::PacketPtr NewPacket() {
    av::PacketPtr packet(av_packet_alloc());
    if (!packet) {
        throw std::bad_alloc();
    }
    return packet;
}

// Layout of FFmpeg's skip record: frames to drop at the start, frames to drop at the end, each a
// little-endian 32-bit number, then two bytes of reasons.
constexpr int kSkipRecordBytes = 10;

// What draining brings has no position.
constexpr std::int64_t kUnknownStart = std::numeric_limits<std::int64_t>::min();

std::int64_t SkippedAtStart(const AVPacket& packet) {
    std::size_t size = 0;
    const std::uint8_t* record = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    return record != nullptr && size >= kSkipRecordBytes ? AV_RL32(record) : 0;
}

std::int64_t PaddingAtEnd(const AVFrame& frame) {
    const AVFrameSideData* record = av_frame_get_side_data(&frame, AV_FRAME_DATA_SKIP_SAMPLES);
    return record != nullptr && record->size >= kSkipRecordBytes ? AV_RL32(record->data + 4) : 0;
}

std::vector<float*> Planes(const AVFrame& frame, std::int64_t from) {
    std::vector<float*> planes;
    planes.reserve(static_cast<std::size_t>(frame.ch_layout.nb_channels));
    for (int i = 0; i < frame.ch_layout.nb_channels; ++i) {
        planes.push_back(reinterpret_cast<float*>(frame.extended_data[i]) + from);
    }
    return planes;
}

} // namespace

Decoder::Decoder(const std::string& path)
    : m_packets(path)
    , m_codec(m_packets.stream(), readStartSkip())
    , m_clock(m_packets.stream())
    , m_channels(m_packets.stream().codecpar->ch_layout.nb_channels)
    , m_warmUp(*m_packets.stream().codecpar)
    , m_frame{av::FramePtr(av_frame_alloc())} {
    if (!m_frame.frame) {
        throw std::bad_alloc();
    }
}

// FFmpeg tells the encoder's delay with the first packet, which stands at 0, and nowhere else. It
// must be known before the first seek: a read that begins at the second packet needs it too.
std::int64_t Decoder::readStartSkip() {
    const av::PacketPtr first = NewPacket();
    readPacket(*first);
    const std::int64_t skip = first->pts == 0 ? SkippedAtStart(*first) : 0;
    m_packets.seek(0);
    return skip;
}

bool Decoder::readPacket(AVPacket& packet) {
    m_counters.packetsRead += m_packets.read(packet);
    return packet.data != nullptr;
}

bool Decoder::decodeToFrame(const std::function<void(const Buffer&)>& callback) {
    const av::PacketPtr packet = NewPacket();
    readPacket(*packet);
    m_codec.send(*packet);
    const std::int64_t packetStart =
        packet->pts == AV_NOPTS_VALUE ? kUnknownStart : m_clock.framesFromTicks(packet->pts);
    m_warmUp.add(packetStart, packet->size);
    av_packet_unref(packet.get());

    bool delivered = false;
    while (m_codec.receive(*m_frame.frame)) {
        ++m_counters.framesDecoded;
        deliver(packetStart, callback);
        delivered = true;
    }
    return delivered;
}

// A frame stands at its packet's position. What lies before the end of the encoder's delay is cut
// off, so that a frame has the same samples whether the read began at the start of the file or
// between. A frame without a position of its own, as draining brings, starts behind the delay.
void Decoder::deliver(std::int64_t packetStart,
                      const std::function<void(const Buffer&)>& callback) {
    const AVFrame& frame = *m_frame.frame;
    m_frame.startFrame = std::max(packetStart, m_codec.startSkip());
    const std::int64_t decodedStart =
        packetStart == kUnknownStart ? m_frame.startFrame : packetStart;
    const FrameRange decoded{decodedStart,
                             std::max(frame.nb_samples - PaddingAtEnd(frame), std::int64_t{0})};
    const FrameRange kept = RangeBetween(m_frame.startFrame, decoded.End());
    if (!callback || kept.length == 0) {
        return;
    }
    Buffer samples(Planes(frame, kept.start - decodedStart), kept.length);
    samples.start = kept.start;
    callback(samples);
}

void Decoder::seek(std::int64_t frame) {
    ++m_counters.seeks;
    m_codec.flush();
    m_warmUp.restart();
    m_packets.seek(m_clock.timestampOfFrame(frame));
}

int Decoder::sampleRate() const {
    return m_clock.rate();
}

} // namespace FFMPEGDecoder
