#include "platform/av/Mp4File.h"

#include <algorithm>
#include <utility>

#include "platform/av/Fragments.h"
#include "platform/av/OpenInput.h"
#include "platform/av/TrackBoxes.h"

namespace av {

namespace {

std::uint32_t Positive(int size) {
    return size > 0 ? static_cast<std::uint32_t>(size) : 0;
}

// The function only looks, but does not say so.
const AVIndexEntry* EntryOf(const AVStream& stream, std::uint32_t number) {
    return avformat_index_get_entry(const_cast<AVStream*>(&stream), static_cast<int>(number));
}

} // namespace

std::unique_ptr<Mp4File> Mp4File::Open(const std::string& path) {
    FormatContextPtr context = OpenMp4(path, EditLists::Ignored);
    if (context == nullptr) {
        return nullptr;
    }
    std::unique_ptr<Mp4File> file(new Mp4File(path, std::move(context)));
    file->AddBoxes(path);
    return file;
}

// libavformat goes by the coding of a track, and keeps one sample description.
void Mp4File::AddBoxes(const std::string& path) {
    for (TrackBoxes& boxes : ReadTrackBoxes(path)) {
        const auto track =
            std::find_if(m_tracks.begin(), m_tracks.end(), [&](const Mp4Track& each) {
                return each.id == boxes.id && each.handler.empty();
            });
        if (track != m_tracks.end()) {
            track->handler = std::move(boxes.handler);
            track->descriptions = std::move(boxes.descriptions);
        }
    }
}

Mp4File::Mp4File(std::string path, FormatContextPtr context)
    : m_path(std::move(path))
    , m_context(std::move(context)) {
    for (unsigned int i = 0; i < m_context->nb_streams; ++i) {
        const AVStream& stream = *m_context->streams[i];
        if (!IsCover(stream) && stream.id > 0) {
            m_tracks.push_back({.id = static_cast<std::uint32_t>(stream.id),
                                .kind = KindOf(stream),
                                .codec = CodecOf(stream),
                                .width = Positive(stream.codecpar->width),
                                .height = Positive(stream.codecpar->height),
                                .stream = i});
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

std::uint32_t Mp4File::MovieUnitsPerSecond() const {
    return ReadMovieUnitsPerSecond(m_path);
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
    const AVIndexEntry* entry = EntryOf(CompleteStreamOf(track), number);
    return Mp4Sample{.time = entry->timestamp,
                     .isKey = (entry->flags & AVINDEX_KEYFRAME) != 0,
                     .place = entry->pos,
                     .size = Positive(entry->size)};
}

std::optional<std::uint32_t> Mp4File::SampleAt(const Mp4Track& track, std::int64_t time) {
    const AVStream& stream = CompleteStreamOf(track);
    const std::uint32_t count = SampleCount(track);
    if (count == 0 ||
        time >= std::max(Duration(track), EntryOf(stream, count - 1)->timestamp + 1)) {
        return std::nullopt;
    }
    std::uint32_t first = 0; // the sample looked for is here or behind
    std::uint32_t behind = count;
    while (behind - first > 1) {
        const std::uint32_t middle = first + (behind - first) / 2;
        (EntryOf(stream, middle)->timestamp <= time ? first : behind) = middle;
    }
    return first;
}

bool Mp4File::Holds(const Mp4Sample& sample) const {
    const std::int64_t size = avio_size(m_context->pb);
    return sample.place >= 0 && sample.place <= size && size - sample.place >= sample.size;
}

bool Mp4File::Read(const Mp4Sample& sample, std::uint8_t* bytes) {
    const auto count = static_cast<int>(sample.size);
    return Holds(sample) && avio_seek(m_context->pb, sample.place, SEEK_SET) == sample.place &&
           avio_read(m_context->pb, bytes, count) == count;
}

} // namespace av
