#include "platform/av/PictureTimeline.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/av/OpenInput.h"
#include "platform/av/StreamChoice.h"
#include "platform/av/WorkTotals.h"

extern "C" {
#include <libavutil/common.h>
#include <libavutil/mathematics.h>
}

namespace av {

namespace {

constexpr AVRational kUnit{1, 10'000'000};
constexpr std::int64_t kDeepestReorder = 16; // pictures, in the codecs named below
constexpr std::int64_t kEarliest = std::numeric_limits<std::int64_t>::min();

std::int64_t ToUnits(std::int64_t timestamp, AVRational base) {
    return av_rescale_q_rnd(timestamp, base, kUnit, AV_ROUND_DOWN);
}

// The last timestamp that ToUnits does not put behind `time`.
std::int64_t ToTimestamp(std::int64_t time, AVRational base) {
    if (time == std::numeric_limits<std::int64_t>::max()) {
        return time;
    }
    return av_rescale_q_rnd(time + 1, kUnit, base, AV_ROUND_UP) - 1;
}

bool OnePacketIsOnePicture(const AVFormatContext& context, const AVStream& stream) {
    const AVCodecID codec = stream.codecpar->codec_id;
    return std::strstr(context.iformat->name, "mov") != nullptr &&
           (codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC || codec == AV_CODEC_ID_MPEG4);
}

PacketStamp StampOf(const AVPacket& packet) {
    return {packet.pts, packet.dts, packet.duration};
}

} // namespace

std::unique_ptr<PictureTimeline> PictureTimeline::Open(const std::string& path, int ordinal) {
    FormatContextPtr context(avformat_alloc_context());
    if (OpenInput(context, path) < 0) {
        return nullptr;
    }
    const int stream = FindStream(*context, TrackKind::Video, ordinal);
    if (stream < 0 || !OnePacketIsOnePicture(*context, *context->streams[stream])) {
        return nullptr;
    }
    DiscardOthers(*context, stream);
    std::unique_ptr<PictureTimeline> timeline(new PictureTimeline(std::move(context), stream));
    return timeline->ReadFirst() ? std::move(timeline) : nullptr;
}

PictureTimeline::PictureTimeline(FormatContextPtr context, int stream)
    : m_context(std::move(context))
    , m_stream(m_context->streams[stream])
    , m_packet(av_packet_alloc()) {}

void PictureTimeline::BeginAt(std::int64_t time) {
    m_begin = time;
}

bool PictureTimeline::Seek(std::int64_t time) {
    m_target = time;
    return LandBefore(time);
}

ReadResult PictureTimeline::Read(PictureSpan& span) {
    ReadResult result = ReadResult::Picture;
    do {
        result = ReadNext(span);
    } while (result == ReadResult::Picture &&
             (span.end <= m_target || span.start < m_begin || span.start == span.end));
    m_target = kEarliest;
    return result;
}

ReadResult PictureTimeline::ReadNext(PictureSpan& span) {
    while (!m_order.Pop(span)) {
        if (!ReadPacket()) {
            m_order.Close();
            if (!m_order.Pop(span)) {
                return ReadResult::End;
            }
            break;
        }
        Take(*m_packet);
    }
    span = {ToUnits(span.start, m_stream->time_base), ToUnits(span.end, m_stream->time_base)};
    return ReadResult::Picture;
}

// Leaves the stream's next packet in m_packet; false when there is none.
bool PictureTimeline::ReadPacket() {
    if (m_packet == nullptr) {
        return false;
    }
    do {
        av_packet_unref(m_packet.get());
        if (av_read_frame(m_context.get(), m_packet.get()) < 0) {
            return false;
        }
        ++m_packetsRead;
        ++WorkTotals().packetsRead;
    } while (m_packet->stream_index != m_stream->index || m_packet->pts == AV_NOPTS_VALUE ||
             m_packet->dts == AV_NOPTS_VALUE);
    return true;
}

// What an edit list cuts away is decoded for what refers to it, but never shown. A packet that the
// end of the file cuts off gives no picture to rely on.
void PictureTimeline::Take(const AVPacket& packet) {
    if ((packet.flags & (AV_PKT_FLAG_DISCARD | AV_PKT_FLAG_CORRUPT)) == 0) {
        m_order.Push(StampOf(packet));
    }
}

// REQUIRES: the demuxer stands at the start of the file.
bool PictureTimeline::ReadFirst() {
    m_order.Restart(kEarliest);
    if (!ReadPacket()) {
        return false;
    }
    m_firstDecoded = m_packet->dts;
    Take(*m_packet);
    return true;
}

bool PictureTimeline::LandAtStart() {
    const std::int64_t first = m_firstDecoded;
    return SeekTo(first) && ReadFirst() && m_firstDecoded == first;
}

// Demuxers seek by the time of decoding, and what they land on may be shown after `time`: then it
// is the key frame before that one, and so on to the start.
bool PictureTimeline::LandBefore(std::int64_t time) {
    const std::int64_t wanted = ToTimestamp(time, m_stream->time_base);
    std::int64_t target = wanted;
    std::int64_t landed = std::numeric_limits<std::int64_t>::max();
    while (SeekTo(target) && ReadPacket() && m_packet->dts < landed) {
        landed = m_packet->dts;
        const PacketStamp first = StampOf(*m_packet);
        if (first.shown <= wanted && StartsGroup(first, wanted)) {
            return true;
        }
        target = landed - 1;
    }
    return LandAtStart();
}

bool PictureTimeline::SeekTo(std::int64_t timestamp) {
    return av_seek_frame(m_context.get(), m_stream->index, timestamp, AVSEEK_FLAG_BACKWARD) >= 0;
}

// Whether all that is shown from `wanted` on is decoded from `first` on, the packet landed on, and
// begins there if so. What is shown before a key frame belongs to the group before it. But where
// one key frame follows the other, it is a file of such pictures alone, and these may be in another
// order than that of decoding: there only distance tells.
bool PictureTimeline::StartsGroup(const PacketStamp& first, std::int64_t wanted) {
    m_order.Restart(first.shown);
    Take(*m_packet);
    if (!ReadPacket()) {
        m_order.Close();
        return true;
    }
    Take(*m_packet);
    return (m_packet->flags & AV_PKT_FLAG_KEY) == 0 ||
           av_sat_sub64(wanted, first.decoded) >=
               kDeepestReorder * std::max<std::int64_t>(1, first.duration);
}

} // namespace av
