#include "platform/mp4v2/Mp4v2.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/av/Mp4File.h"

namespace {

constexpr std::string_view SampleDescriptions = "mdia.minf.stbl.stsd.";

const av::Mp4File* FileOf(MP4FileHandle file) {
    return static_cast<const av::Mp4File*>(file);
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
    if (file == MP4_INVALID_FILE_HANDLE || atomPath == nullptr) {
        return false;
    }
    const auto& tracks = FileOf(file)->Tracks();
    return std::any_of(tracks.begin(), tracks.end(), [&](const av::Mp4Track& each) {
        return each.id == track && !each.codec.empty() &&
               std::string(SampleDescriptions) + each.codec == atomPath;
    });
}

void MP4Close(MP4FileHandle file, std::uint32_t) {
    delete FileOf(file);
}
