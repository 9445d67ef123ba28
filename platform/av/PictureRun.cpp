#include "platform/av/PictureRun.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace av {

namespace {

// No picture is reordered further.
constexpr std::size_t kLongestReordering = 16;

// The fields of a picture may come in packets of their own, half a picture apart.
std::int64_t LeastDistance(const AVStream& stream) {
    const AVFieldOrder order = stream.codecpar->field_order;
    const AVRational rate = stream.avg_frame_rate;
    if (order == AV_FIELD_PROGRESSIVE || order == AV_FIELD_UNKNOWN || rate.num <= 0) {
        return 1;
    }
    return std::max<std::int64_t>(av_rescale_q(3, av_inv_q(rate), stream.time_base) / 4, 1);
}

} // namespace

PictureRun::PictureRun(PacketFeed& feed, VideoDecoder& decoder, const AVStream& stream,
                       bool everyTimeTold)
    : m_feed(feed)
    , m_decoder(decoder)
    , m_clock(stream)
    , m_scratch(av_frame_alloc())
    , m_everyTimeTold(everyTimeTold)
    , m_apart(LeastDistance(stream)) {}

void PictureRun::Begin(bool fromStart) {
    m_clock.Reset();
    m_ready.clear();
    m_inside.clear();
    m_sent.clear();
    m_fromStart = fromStart;
    m_landed = fromStart;
    m_judged = false;
    m_broken = false;
    m_decodesAll = !m_everyTimeTold;
    m_firstSerial = m_serial + 1;
    m_leftOut = INT64_MIN;
    m_firstStart.reset();
    m_lastPts = AV_NOPTS_VALUE;
    m_floor = INT64_MIN;
    const AVPacket* first = m_feed.Front();
    if (!fromStart && first != nullptr && first->pts != AV_NOPTS_VALUE) {
        m_floor = m_clock.FromStream(first->pts);
    }
}

bool PictureRun::Prime(std::int64_t keepFrom) {
    return !m_ready.empty() || Decode(keepFrom);
}

std::optional<std::int64_t> PictureRun::Position() const {
    return m_ready.empty() ? std::nullopt : std::optional(m_ready.begin()->first);
}

std::optional<std::int64_t> PictureRun::StreamBegin() const {
    const bool leftOut = m_leftOut != INT64_MIN;
    return m_fromStart && !leftOut ? m_firstStart : std::nullopt;
}

PicturePtr PictureRun::Next(std::int64_t keepFrom) {
    while (true) {
        const bool known = m_ready.size() > 1 && !AwaitsBefore(*std::next(m_ready.begin())->second);
        if (!known && Decode(keepFrom)) {
            continue;
        }
        if (m_ready.size() < 2) {
            break;
        }
        const std::int64_t end = std::next(m_ready.begin())->first;
        if (end > keepFrom) {
            return Emit(end);
        }
        PassFirst(end);
    }
    if (m_ready.empty()) {
        return nullptr;
    }
    const auto& [start, last] = *m_ready.begin();
    return Emit(m_clock.EndOf(*last, start));
}

PicturePtr PictureRun::Emit(std::int64_t end) {
    const std::int64_t start = m_ready.begin()->first;
    return std::make_shared<Picture>(PassFirst(end), start, end);
}

// Takes the first of those that are ready; nothing that starts before `end` comes after it.
FramePtr PictureRun::PassFirst(std::int64_t end) {
    auto first = m_ready.extract(m_ready.begin());
    if (!m_firstStart) {
        m_firstStart = first.key();
    }
    m_floor = end;
    return std::move(first.mapped());
}

std::optional<std::int64_t> PictureRun::NextDts() {
    const AVPacket* packet = m_feed.Front();
    return packet == nullptr || packet->dts == AV_NOPTS_VALUE ? std::nullopt
                                                              : std::optional(packet->dts);
}

// Brings one more picture to those that are ready; false when there is none any more.
bool PictureRun::Decode(std::int64_t keepFrom) {
    const std::size_t before = m_ready.size();
    while (m_ready.size() == before) {
        switch (m_decoder.Receive(*m_scratch)) {
        case VideoDecoder::Result::Ended:
            return false;
        case VideoDecoder::Result::NeedsInput:
            SendNext(keepFrom);
            break;
        case VideoDecoder::Result::Frame:
            Take(*m_scratch);
            break;
        }
    }
    return true;
}

void PictureRun::Take(AVFrame& frame) {
    const std::int64_t start = m_clock.StartOf(frame);
    Judge(frame);
    m_inside.erase(frame.reordered_opaque);
    FramePtr taken(av_frame_alloc());
    if (taken == nullptr || IsLeading(frame, start)) {
        av_frame_unref(&frame);
        return;
    }
    av_frame_move_ref(taken.get(), &frame);
    m_ready.insert_or_assign(start, std::move(taken));
}

// Decoders give pictures in order of presentation, so what comes before the landing packet's
// picture is presented before it. Times that do not rise are no better.
bool PictureRun::IsLeading(const AVFrame& frame, std::int64_t start) {
    m_landed = m_landed || frame.reordered_opaque == m_firstSerial ||
               (m_floor != INT64_MIN && start >= m_floor);
    return !m_landed || start < m_floor;
}

// Whether a picture that is presented before `frame` is still to come: some streams have key frames
// that change places with each other, and a decoder gives a key frame before all that follows.
bool PictureRun::AwaitsBefore(const AVFrame& frame) {
    if (m_decoder.Context().has_b_frames == 0 || frame.pts == AV_NOPTS_VALUE) {
        return false;
    }
    // What takes longer than the longest reordering is lost.
    constexpr auto kLongest = static_cast<std::int64_t>(kLongestReordering);
    m_inside.erase(m_inside.begin(), m_inside.upper_bound(frame.reordered_opaque - kLongest));
    const std::int64_t from = m_clock.ToStream(m_ready.begin()->first);
    const auto comesBefore = [&](const auto& inside) {
        return inside.second > from && inside.second < frame.pts;
    };
    return std::any_of(m_inside.begin(), m_inside.end(), comesBefore) ||
           m_feed.HasBetween(from, frame.pts);
}

// Containers lie about key frames. What decodes to another kind of picture, or with errors, is
// none.
void PictureRun::Judge(const AVFrame& frame) {
    if (m_judged || frame.reordered_opaque != m_firstSerial) {
        return;
    }
    m_judged = true;
    m_broken = !m_fromStart && (frame.decode_error_flags != 0 ||
                                (frame.key_frame == 0 && frame.pict_type != AV_PICTURE_TYPE_NONE));
}

void PictureRun::SendNext(std::int64_t keepFrom) {
    const AVPacket* packet = m_feed.Front();
    if (packet == nullptr) {
        m_decoder.Finish();
        return;
    }
    ++m_serial;
    const bool leavesOut = MayLeaveOut(*packet, keepFrom);
    if (leavesOut) {
        m_leftOut = std::max(m_leftOut, m_clock.FromStream(packet->pts));
    }
    m_lastPts = packet->pts;
    m_lastLeftOut = leavesOut;
    m_clock.Sent(*packet);
    const bool sent = m_decoder.Send(*packet, m_serial, leavesOut);
    if (sent && !leavesOut) {
        NoteSent(*packet);
    }
    m_feed.Pop();
}

void PictureRun::NoteSent(const AVPacket& packet) {
    if (packet.pts == AV_NOPTS_VALUE || (packet.flags & AV_PKT_FLAG_DISCARD) != 0) {
        return;
    }
    m_inside.emplace(m_serial, packet.pts);
    m_sent.push_back(packet.pts);
    if (m_sent.size() > kLongestReordering) {
        m_sent.pop_front();
    }
}

// A picture may be left out when another takes its place before `keepFrom`.
bool PictureRun::MayLeaveOut(const AVPacket& packet, std::int64_t keepFrom) {
    if (m_decodesAll || packet.pts == AV_NOPTS_VALUE || (packet.flags & AV_PKT_FLAG_KEY) != 0 ||
        m_clock.FromStream(packet.pts) >= keepFrom) {
        return false;
    }
    if (m_lastPts != AV_NOPTS_VALUE && std::abs(packet.pts - m_lastPts) < m_apart) {
        return m_lastLeftOut; // the other field of the picture
    }
    const std::int64_t from = packet.pts + m_apart;
    const std::int64_t to = m_clock.ToStream(keepFrom);
    const auto takesPlace = [&](std::int64_t pts) { return pts >= from && pts <= to; };
    return std::any_of(m_sent.begin(), m_sent.end(), takesPlace) || m_feed.HasPresented(from, to);
}

} // namespace av
