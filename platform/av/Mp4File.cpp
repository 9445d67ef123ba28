#include "platform/av/Mp4File.h"

#include <algorithm>
#include <utility>

#include "platform/av/Fragments.h"
#include "platform/av/OpenInput.h"

namespace av {

std::unique_ptr<Mp4File> Mp4File::Open(const std::string& path) {
    FormatContextPtr context = OpenMp4(path, EditLists::Ignored);
    return context == nullptr ? nullptr : std::unique_ptr<Mp4File>(new Mp4File(std::move(context)));
}

Mp4File::Mp4File(FormatContextPtr context)
    : m_context(std::move(context)) {
    for (unsigned int i = 0; i < m_context->nb_streams; ++i) {
        const AVStream& stream = *m_context->streams[i];
        if (!IsCover(stream) && stream.id > 0) {
            m_tracks.push_back(
                {static_cast<std::uint32_t>(stream.id), KindOf(stream), CodecOf(stream), i});
        }
    }
}

const AVStream& Mp4File::CompleteStreamOf(const Mp4Track& track) {
    if (!m_fragmentsVisited) {
        VisitFragments(*m_context);
        m_fragmentsVisited = true;
    }
    return *m_context->streams[track.stream];
}

// A track's time base is one over its time scale in this family of files.
std::uint32_t Mp4File::UnitsPerSecond(const Mp4Track& track) const {
    return static_cast<std::uint32_t>(std::max(m_context->streams[track.stream]->time_base.den, 1));
}

std::int64_t Mp4File::Duration(const Mp4Track& track) {
    return std::max(CompleteStreamOf(track).duration, std::int64_t{0});
}

std::uint32_t Mp4File::SampleCount(const Mp4Track& track) {
    return static_cast<std::uint32_t>(
        std::max(avformat_index_get_entries_count(&CompleteStreamOf(track)), 0));
}

std::optional<Mp4Sample> Mp4File::Sample(const Mp4Track& track, std::uint32_t number) {
    if (number >= SampleCount(track)) {
        return std::nullopt;
    }
    // The function only looks, but does not say so.
    auto& stream = const_cast<AVStream&>(CompleteStreamOf(track));
    const AVIndexEntry* entry = avformat_index_get_entry(&stream, static_cast<int>(number));
    return Mp4Sample{entry->timestamp, (entry->flags & AVINDEX_KEYFRAME) != 0};
}

} // namespace av
