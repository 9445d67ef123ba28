#include "platform/av/Demuxer.h"

#include <cstring>
#include <utility>

#include "platform/av/OpenInput.h"
#include "platform/av/StreamChoice.h"

namespace av {

namespace {

// Times that nothing can be added to are none.
void DropBoundlessTimes(AVPacket& packet) {
    constexpr std::int64_t kMost = std::int64_t{1} << 60;
    for (std::int64_t* time : {&packet.pts, &packet.dts}) {
        if (*time > kMost || *time < -kMost) {
            *time = AV_NOPTS_VALUE;
        }
    }
}

// Whether a picture that others are predicted from may itself wait behind several of those. Then
// its place among them cannot be told from the kinds of the pictures.
bool ReordersFreely(const AVStream& stream) {
    const AVCodecID codec = stream.codecpar->codec_id;
    return codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC || codec == AV_CODEC_ID_VVC;
}

bool HasSideData(const AVPacket& packet, AVPacketSideDataType type) {
    return av_packet_get_side_data(&packet, type, nullptr) != nullptr;
}

} // namespace

std::unique_ptr<Demuxer> Demuxer::Open(const std::string& path, int ordinal, TrackKind kind) {
    std::unique_ptr<Demuxer> demuxer(new Demuxer(path, ordinal, kind));
    if (!demuxer->Reopen()) {
        return nullptr;
    }
    if (demuxer->ReadFromFile(*demuxer->m_pending)) {
        const AVPacket& first = *demuxer->m_pending;
        if (demuxer->IsEncrypted(first)) {
            return nullptr;
        }
        demuxer->m_first = MarkOf(first);
        demuxer->m_hasTimes = first.dts != AV_NOPTS_VALUE || first.pts != AV_NOPTS_VALUE;
    }
    return demuxer;
}

bool Demuxer::Reopen() {
    m_pending.reset(av_packet_alloc());
    m_format.reset(avformat_alloc_context());
    if (m_pending == nullptr || m_format == nullptr || OpenInput(m_format, m_path) < 0 ||
        avformat_find_stream_info(m_format.get(), nullptr) < 0) {
        return false;
    }
    m_stream = FindStream(*m_format, m_kind, m_ordinal);
    if (m_stream < 0) {
        return false;
    }
    DiscardOthers(*m_format, m_stream);
    if (m_kind == TrackKind::Video && !ReordersFreely(Stream())) {
        // Where only decode times are stored, those of presentation follow from them and from
        // which pictures others are predicted from.
        m_format->flags |= AVFMT_FLAG_GENPTS;
    }
    return true;
}

bool Demuxer::MissesTimes() const {
    return ReordersFreely(Stream()) && std::strcmp(m_format->iformat->name, "mpeg") == 0;
}

// Decoding "works" on what is encrypted, and gives noise.
bool Demuxer::IsEncrypted(const AVPacket& first) const {
    const std::uint32_t tag = Stream().codecpar->codec_tag;
    return tag == MKTAG('e', 'n', 'c', 'v') || tag == MKTAG('d', 'r', 'm', 'i') ||
           tag == MKTAG('e', 'n', 'c', 'a') || tag == MKTAG('d', 'r', 'm', 's') ||
           HasSideData(first, AV_PKT_DATA_ENCRYPTION_INFO) ||
           av_stream_get_side_data(&Stream(), AV_PKT_DATA_ENCRYPTION_INIT_INFO, nullptr) != nullptr;
}

bool Demuxer::Read(AVPacket& packet) {
    m_atFirst = false;
    if (m_pending->data != nullptr) {
        av_packet_move_ref(&packet, m_pending.get());
        return true;
    }
    return ReadFromFile(packet);
}

// An error in the middle costs the packets it hits; a file that gives nothing but errors has ended.
bool Demuxer::ReadFromFile(AVPacket& packet) {
    constexpr int kMostErrors = 100;
    for (int errors = 0; errors < kMostErrors;) {
        av_packet_unref(&packet);
        const int result = av_read_frame(m_format.get(), &packet);
        if (result == AVERROR_EOF) {
            return false;
        }
        if (result < 0) {
            ++errors;
        } else if (packet.stream_index == m_stream && packet.size > 0) {
            DropBoundlessTimes(packet);
            return true;
        }
    }
    return false;
}

bool Demuxer::SeekBefore(std::int64_t dts) {
    m_atFirst = false;
    av_packet_unref(m_pending.get());
    return av_seek_frame(m_format.get(), m_stream, dts, AVSEEK_FLAG_BACKWARD) >= 0;
}

bool Demuxer::Rewind() {
    if (m_atFirst) {
        return true;
    }
    if (!m_rewindsBySeeking || !RewindBySeeking()) {
        m_rewindsBySeeking = false;
        if (!Reopen()) {
            return false;
        }
    }
    m_atFirst = true;
    return true;
}

// Only formats with an index of their own give the first packets after a seek with the same times
// as after opening; others compute them from what they have read.
bool Demuxer::RewindBySeeking() {
    const auto first = FirstDts();
    return first && avformat_index_get_entries_count(&Stream()) > 0 &&
           (m_format->iformat->flags & (AVFMT_GENERIC_INDEX | AVFMT_TS_DISCONT)) == 0 &&
           SeekBefore(*first) && ReadFromFile(*m_pending) && MarkOf(*m_pending) == m_first;
}

Demuxer::Mark Demuxer::MarkOf(const AVPacket& packet) {
    return {packet.pts, packet.dts, packet.pos, packet.size};
}

bool Demuxer::IsFirst(const AVPacket& packet) const {
    const Mark mark = MarkOf(packet);
    return m_first.position >= 0 && mark.position == m_first.position ? mark.size == m_first.size
                                                                      : mark == m_first;
}

std::optional<std::int64_t> Demuxer::FirstDts() const {
    return m_first.dts == AV_NOPTS_VALUE ? std::nullopt : std::optional(m_first.dts);
}

bool Demuxer::FollowsIndexedKey(std::int64_t dts) const {
    AVStream* stream = m_format->streams[m_stream];
    const int index =
        av_index_search_timestamp(stream, dts, AVSEEK_FLAG_ANY | AVSEEK_FLAG_BACKWARD);
    const AVIndexEntry* before = avformat_index_get_entry(stream, index - 1);
    return before != nullptr && (before->flags & AVINDEX_KEYFRAME) != 0;
}

std::optional<std::int64_t> Demuxer::IndexedKeyBefore(std::int64_t dts) const {
    AVStream* stream = m_format->streams[m_stream];
    const AVIndexEntry* entry =
        avformat_index_get_entry_from_timestamp(stream, dts, AVSEEK_FLAG_BACKWARD);
    return entry == nullptr ? std::nullopt : std::optional(entry->timestamp);
}

} // namespace av
