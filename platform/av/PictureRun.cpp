#include "platform/av/PictureRun.h"

#include <algorithm>
#include <utility>

namespace av {

void PictureRun::Begin(bool fromStart) {
    m_clock.Reset();
    m_held = {};
    m_fromStart = fromStart;
    m_landed = fromStart;
    m_judged = false;
    m_broken = false;
    m_decodesAll = false;
    m_firstSerial = m_serial + 1;
    m_leftOut = INT64_MIN;
    m_floor.reset();
    const AVPacket* first = m_feed.Front();
    if (first != nullptr && first->pts != AV_NOPTS_VALUE) {
        m_floor = m_clock.FromStream(first->pts);
    }
}

bool PictureRun::Prime(std::int64_t keepFrom) {
    auto first = Decode(keepFrom);
    if (first) {
        m_held = std::move(*first);
    }
    return m_held.frame != nullptr;
}

std::optional<std::int64_t> PictureRun::Position() const {
    return m_held.frame == nullptr ? std::nullopt : std::optional(m_held.start);
}

PicturePtr PictureRun::Next(std::int64_t keepFrom) {
    if (m_held.frame == nullptr && !Prime(keepFrom)) {
        return nullptr;
    }
    while (auto next = Decode(keepFrom)) {
        if (next->start < m_held.start) {
            continue;
        }
        Timed ready = std::exchange(m_held, std::move(*next));
        // Of two pictures with one time the later one is shown.
        if (ready.start < m_held.start && m_held.start > keepFrom) {
            return std::make_shared<Picture>(std::move(ready.frame), ready.start, m_held.start);
        }
    }
    return TakeLast();
}

PicturePtr PictureRun::TakeLast() {
    Timed last = std::exchange(m_held, {});
    const std::int64_t end = last.start + m_clock.DurationOf(*last.frame);
    return std::make_shared<Picture>(std::move(last.frame), last.start, end);
}

std::optional<std::int64_t> PictureRun::NextDts() {
    const AVPacket* packet = m_feed.Front();
    return packet == nullptr || packet->dts == AV_NOPTS_VALUE ? std::nullopt
                                                              : std::optional(packet->dts);
}

// The next picture to hand out.
std::optional<PictureRun::Timed> PictureRun::Decode(std::int64_t keepFrom) {
    while (true) {
        const VideoDecoder::Result result = m_decoder.Receive(*m_scratch);
        if (result == VideoDecoder::Result::Ended) {
            return std::nullopt;
        }
        if (result == VideoDecoder::Result::NeedsInput) {
            SendNext(keepFrom);
            continue;
        }
        Timed timed{FramePtr(av_frame_alloc()), m_clock.StartOf(*m_scratch)};
        if (timed.frame == nullptr) {
            return std::nullopt;
        }
        Judge(*m_scratch);
        av_frame_move_ref(timed.frame.get(), m_scratch.get());
        if (!IsLeading(*timed.frame)) {
            return timed;
        }
    }
}

// Frames come out in order of presentation, so what comes before the landing packet's picture is
// presented before it.
bool PictureRun::IsLeading(const AVFrame& frame) {
    m_landed =
        m_landed || frame.reordered_opaque == m_firstSerial ||
        (m_floor && m_clock.FromStream(frame.pts) >= *m_floor && frame.pts != AV_NOPTS_VALUE);
    return !m_landed;
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
    const bool leavesOut = MayLeaveOut(*packet, keepFrom);
    if (leavesOut) {
        m_leftOut = std::max(m_leftOut, m_clock.FromStream(packet->pts));
    }
    m_clock.Sent(*packet);
    ++m_serial;
    m_decoder.Send(*packet, m_serial, leavesOut);
    m_feed.Pop();
}

bool PictureRun::MayLeaveOut(const AVPacket& packet, std::int64_t keepFrom) {
    return !m_decodesAll && packet.pts != AV_NOPTS_VALUE && (packet.flags & AV_PKT_FLAG_KEY) == 0 &&
           m_clock.FromStream(packet.pts) < keepFrom &&
           m_feed.IsOvertaken(m_clock.ToStream(keepFrom));
}

} // namespace av
