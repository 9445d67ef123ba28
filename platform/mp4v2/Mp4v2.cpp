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
    return type == nullptr || track.handler == type;
}

bool HasDescription(const av::Mp4Track& track, const std::string& atomPath) {
    return std::any_of(track.descriptions.begin(), track.descriptions.end(),
                       [&](const std::string& each) {
                           return std::string(SampleDescriptions) + each == atomPath;
                       });
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
        return each.id == track && HasDescription(each, atomPath);
    });
}

void MP4Close(MP4FileHandle file, std::uint32_t) {
    delete FileOf(file);
}
