#include "platform/av/CompressedStream.h"

#include <algorithm>
#include <utility>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace av {

namespace {

std::int64_t UsualDuration(const AVStream& stream) {
    constexpr std::int64_t kOtherwise = 400'000;
    const AVRational rate =
        stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
    return rate.num > 0 && rate.den > 0
               ? std::max<std::int64_t>(av_rescale(10'000'000, rate.den, rate.num), 1)
               : kOtherwise;
}

bool IsKey(const AVPacket& packet) {
    return (packet.flags & AV_PKT_FLAG_KEY) != 0;
}

void Note(std::int64_t start, std::int64_t time, KeyFrames& found) {
    if (start >= time) {
        found.atOrAfter = start;
    }
    if (start <= time) {
        found.atOrBefore = std::max(found.atOrBefore.value_or(start), start);
    }
}

} // namespace

std::unique_ptr<CompressedStream> CompressedStream::Open(const std::string& path, int ordinal) {
    auto demuxer = Demuxer::Open(path, ordinal);
    return demuxer == nullptr
               ? nullptr
               : std::unique_ptr<CompressedStream>(new CompressedStream(std::move(demuxer)));
}

CompressedStream::CompressedStream(std::unique_ptr<Demuxer> demuxer)
    : m_demuxer(std::move(demuxer))
    , m_feed(*m_demuxer)
    , m_clock(m_demuxer->Stream())
    , m_usualDuration(UsualDuration(m_demuxer->Stream()))
    , m_landing(*m_demuxer, m_feed, m_clock, 0) {}

bool CompressedStream::Seek(std::int64_t time) {
    m_passed = 0;
    return m_landing.Find(time) != Landing::Place::Nowhere;
}

std::optional<CompressedPicture> CompressedStream::Read() {
    const AVPacket* packet = m_feed.Front();
    if (packet == nullptr) {
        return std::nullopt;
    }
    CompressedPicture picture;
    picture.bytes.assign(packet->data, packet->data + packet->size);
    picture.start = StartOf(*packet);
    picture.duration = DurationOf(*packet, picture.start);
    picture.isKey = IsKey(*packet);
    Pass();
    return picture;
}

KeyFrames CompressedStream::KeyFramesAround(std::int64_t time) {
    KeyFrames found;
    if (!Seek(time)) {
        return found;
    }
    for (const AVPacket* packet = m_feed.Front(); packet != nullptr && !found.atOrAfter;
         packet = m_feed.Front()) {
        if (IsKey(*packet)) {
            Note(StartOf(*packet), time, found);
        }
        Pass();
    }
    return found;
}

std::int64_t CompressedStream::StartOf(const AVPacket& packet) const {
    if (packet.pts != AV_NOPTS_VALUE) {
        return m_clock.FromStream(packet.pts);
    }
    return packet.dts != AV_NOPTS_VALUE ? m_clock.FromStream(packet.dts)
                                        : m_passed * m_usualDuration;
}

std::int64_t CompressedStream::DurationOf(const AVPacket& packet, std::int64_t start) const {
    const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    if (time == AV_NOPTS_VALUE || packet.duration <= 0) {
        return m_usualDuration;
    }
    const std::int64_t end = m_clock.FromStream(av_sat_add64(time, packet.duration));
    return std::max<std::int64_t>(end - start, 1);
}

void CompressedStream::Pass() {
    m_feed.Pop();
    ++m_passed;
}

} // namespace av
