#include "platform/av/Landing.h"

#include <algorithm>
#include <limits>

namespace av {

namespace {

constexpr std::int64_t kSecond = 10'000'000;
// Where so many places in a row are of no use, nothing the container says is.
constexpr int kMostRefused = 8;
constexpr int kMostSeeks = 64;

std::int64_t DecodeTime(const AVPacket& packet) {
    return packet.dts != AV_NOPTS_VALUE ? packet.dts : packet.pts;
}

std::int64_t PresentationTime(const AVPacket& packet) {
    return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
}

} // namespace

Landing::Place Landing::Find(std::int64_t time) {
    m_time = time;
    m_target = m_clock.ToStream(time);
    m_landed = std::numeric_limits<std::int64_t>::max();
    m_step = std::max<std::int64_t>(m_clock.ToStream(kSecond), 1);
    m_refused = 0;
    m_further = m_reorder;
    return Search();
}

Landing::Place Landing::Earlier() {
    m_target = m_landed - 1;
    return ++m_refused > kMostRefused ? ToStart() : Search();
}

Landing::Place Landing::ToStart() {
    ++m_seeks;
    m_feed.Clear();
    return m_demuxer.Rewind() ? Place::Start : Place::Nowhere;
}

void Landing::MarkFalse() {
    m_false.insert(m_landed);
}

// In these codecs a picture may keep parts of the one before; every packet is flagged as a key
// frame all the same, and the decoder believes it.
bool Landing::IsOnlyStartTrusted() const {
    const AVCodecID codec = m_demuxer.Stream().codecpar->codec_id;
    return codec == AV_CODEC_ID_CINEPAK || codec == AV_CODEC_ID_MSVIDEO1 ||
           codec == AV_CODEC_ID_MSRLE || !m_demuxer.HasTimes();
}

Landing::Place Landing::Search() {
    const auto first = m_demuxer.FirstDts();
    if (IsOnlyStartTrusted()) {
        return ToStart();
    }
    for (int seeks = 0; seeks < kMostSeeks; ++seeks) {
        if ((first && m_target <= *first) || !SeekToKey()) {
            break;
        }
        const AVPacket* key = m_feed.Front();
        if (key == nullptr || DecodeTime(*key) >= m_landed) {
            StepBack();
            continue;
        }
        m_landed = DecodeTime(*key);
        if (m_landed == AV_NOPTS_VALUE || m_demuxer.IsFirst(*key)) {
            break;
        }
        if (MayServe(*key) && !NeedsOneBefore()) {
            return Place::KeyFrame;
        }
        m_target = m_landed - 1;
    }
    return ToStart();
}

bool Landing::MayServe(const AVPacket& key) const {
    return m_clock.FromStream(PresentationTime(key)) <= m_time && !m_false.contains(m_landed);
}

// Nothing decoded before a key frame is presented after it, as a rule. Where key frames stand side
// by side in a reordered stream (clips that were cut and encoded anew at the cut) they are
// reordered among themselves, so those that may have changed places are decoded too.
bool Landing::NeedsOneBefore() {
    return m_further > 0 && m_demuxer.FollowsIndexedKey(m_landed) && m_further-- > 0;
}

// The container's search was too coarse: it ended at or behind the place it had ended at before.
void Landing::StepBack() {
    m_target = m_target > std::numeric_limits<std::int64_t>::min() / 2 + m_step
                   ? m_target - m_step
                   : std::numeric_limits<std::int64_t>::min() / 2;
    m_step = std::min(m_step * 2, std::numeric_limits<std::int64_t>::max() / 8);
}

// False when the container cannot seek.
bool Landing::SeekToKey() {
    ++m_seeks;
    m_feed.Clear();
    if (!m_demuxer.SeekBefore(m_target)) {
        return false;
    }
    const AVPacket* packet = m_feed.Front();
    while (packet != nullptr && (packet->flags & AV_PKT_FLAG_KEY) == 0) {
        m_feed.Pop();
        packet = m_feed.Front();
    }
    return true;
}

} // namespace av
