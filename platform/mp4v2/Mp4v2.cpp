#include "platform/mp4v2/Mp4v2.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "platform/av/Mp4File.h"

namespace {

constexpr std::string_view SampleDescriptions = "mdia.minf.stbl.stsd.";

av::Mp4File* FileOf(MP4FileHandle file) {
    return static_cast<av::Mp4File*>(file);
}

// Null where there is none.
const av::Mp4Track* TrackOf(MP4FileHandle file, MP4TrackId id) {
    if (file == MP4_INVALID_FILE_HANDLE) {
        return nullptr;
    }
    const auto& tracks = FileOf(file)->Tracks();
    const auto found = std::find_if(tracks.begin(), tracks.end(),
                                    [id](const av::Mp4Track& track) { return track.id == id; });
    return found == tracks.end() ? nullptr : &*found;
}

// Nothing where there is none.
std::optional<av::Mp4Sample> SampleOf(MP4FileHandle file, MP4TrackId id, MP4SampleId sample) {
    const av::Mp4Track* track = TrackOf(file, id);
    const bool named = track != nullptr && sample != MP4_INVALID_SAMPLE_ID;
    return named ? FileOf(file)->Sample(*track, sample - 1) : std::nullopt;
}

bool IsOfType(const av::Mp4Track& track, const char* type) {
    if (type == nullptr) {
        return true;
    }
    return (track.kind == av::TrackKind::Audio && std::string_view(type) == MP4_AUDIO_TRACK_TYPE) ||
           (track.kind == av::TrackKind::Video && std::string_view(type) == MP4_VIDEO_TRACK_TYPE);
}

} // namespace

MP4FileHandle MP4Read(const char* path) {
    return path == nullptr ? MP4_INVALID_FILE_HANDLE : av::Mp4File::Open(path).release();
}

MP4TrackId MP4FindTrackId(MP4FileHandle file, std::uint16_t index, const char* type,
                          std::uint8_t subType) {
    if (file == MP4_INVALID_FILE_HANDLE || subType != 0) {
        return MP4_INVALID_TRACK_ID;
    }
    std::uint32_t before = 0;
    for (const av::Mp4Track& track : FileOf(file)->Tracks()) {
        if (IsOfType(track, type) && before++ == index) {
            return track.id;
        }
    }
    return MP4_INVALID_TRACK_ID;
}

bool MP4HaveTrackAtom(MP4FileHandle file, MP4TrackId track, const char* atomPath) {
    const av::Mp4Track* found = TrackOf(file, track);
    return found != nullptr && atomPath != nullptr && !found->codec.empty() &&
           std::string(SampleDescriptions) + found->codec == atomPath;
}

MP4Duration MP4GetTrackDuration(MP4FileHandle file, MP4TrackId track) {
    const av::Mp4Track* found = TrackOf(file, track);
    return found == nullptr ? MP4_INVALID_DURATION
                            : static_cast<MP4Duration>(FileOf(file)->Duration(*found));
}

std::uint32_t MP4GetTrackTimeScale(MP4FileHandle file, MP4TrackId track) {
    const av::Mp4Track* found = TrackOf(file, track);
    return found == nullptr ? 0 : FileOf(file)->UnitsPerSecond(*found);
}

MP4SampleId MP4GetTrackNumberOfSamples(MP4FileHandle file, MP4TrackId track) {
    const av::Mp4Track* found = TrackOf(file, track);
    return found == nullptr ? 0 : FileOf(file)->SampleCount(*found);
}

std::int8_t MP4GetSampleSync(MP4FileHandle file, MP4TrackId track, MP4SampleId sample) {
    const auto found = SampleOf(file, track, sample);
    return found ? static_cast<std::int8_t>(found->isKey) : std::int8_t{-1};
}

MP4Timestamp MP4GetSampleTime(MP4FileHandle file, MP4TrackId track, MP4SampleId sample) {
    const auto found = SampleOf(file, track, sample);
    return found ? static_cast<MP4Timestamp>(std::max(found->time, std::int64_t{0}))
                 : MP4_INVALID_TIMESTAMP;
}

void MP4Close(MP4FileHandle file, std::uint32_t) {
    delete FileOf(file);
}
