#include "platform/mp4v2/Mp4v2.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/av/Mp4File.h"
#include "platform/av/Mp4Writer.h"

namespace {

constexpr std::string_view SampleDescriptions = "mdia.minf.stbl.stsd.";

// One of the two.
struct File {
    std::unique_ptr<av::Mp4File> read;
    std::unique_ptr<av::Mp4Writer> made;
};

// Null for a handle on a file that is being made, and for none.
av::Mp4File* FileOf(MP4FileHandle file) {
    return file == MP4_INVALID_FILE_HANDLE ? nullptr : static_cast<File*>(file)->read.get();
}

// Null for a handle on a file that is read, and for none.
av::Mp4Writer* MadeOf(MP4FileHandle file) {
    return file == MP4_INVALID_FILE_HANDLE ? nullptr : static_cast<File*>(file)->made.get();
}

// Null where there is none.
const av::Mp4Track* TrackOf(MP4FileHandle file, MP4TrackId id) {
    if (FileOf(file) == nullptr) {
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
    return type == nullptr || track.handler == type;
}

bool HasDescription(const av::Mp4Track& track, const std::string& atomPath) {
    return std::any_of(track.descriptions.begin(), track.descriptions.end(),
                       [&](const std::string& each) {
                           return std::string(SampleDescriptions) + each == atomPath;
                       });
}

std::uint16_t ToSize(std::uint32_t pixels) {
    constexpr std::uint32_t most = std::numeric_limits<std::uint16_t>::max();
    return static_cast<std::uint16_t>(std::min(pixels, most));
}

} // namespace

MP4FileHandle MP4Read(const char* path) {
    auto file = path == nullptr ? nullptr : av::Mp4File::Open(path);
    return file == nullptr ? MP4_INVALID_FILE_HANDLE : new File{std::move(file), nullptr};
}

MP4TrackId MP4FindTrackId(MP4FileHandle file, std::uint16_t index, const char* type,
                          std::uint8_t subType) {
    if (FileOf(file) == nullptr || subType != 0) {
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

std::uint32_t MP4GetNumberOfTracks(MP4FileHandle file, const char* type, std::uint8_t subType) {
    if (FileOf(file) == nullptr || subType != 0) {
        return 0;
    }
    const auto& tracks = FileOf(file)->Tracks();
    return static_cast<std::uint32_t>(
        std::count_if(tracks.begin(), tracks.end(),
                      [type](const av::Mp4Track& track) { return IsOfType(track, type); }));
}

const char* MP4GetTrackMediaDataName(MP4FileHandle file, MP4TrackId track) {
    const av::Mp4Track* found = TrackOf(file, track);
    return found == nullptr || found->descriptions.size() != 1
               ? nullptr
               : found->descriptions.front().c_str();
}

std::uint16_t MP4GetTrackVideoWidth(MP4FileHandle file, MP4TrackId track) {
    const av::Mp4Track* found = TrackOf(file, track);
    return found == nullptr ? std::uint16_t{0} : ToSize(found->width);
}

std::uint16_t MP4GetTrackVideoHeight(MP4FileHandle file, MP4TrackId track) {
    const av::Mp4Track* found = TrackOf(file, track);
    return found == nullptr ? std::uint16_t{0} : ToSize(found->height);
}

bool MP4HaveTrackAtom(MP4FileHandle file, MP4TrackId track, const char* atomPath) {
    const av::Mp4Track* found = TrackOf(file, track);
    return found != nullptr && atomPath != nullptr && HasDescription(*found, atomPath);
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

MP4SampleId MP4GetSampleIdFromTime(MP4FileHandle file, MP4TrackId track, MP4Timestamp when,
                                   bool wantSyncSample) {
    const av::Mp4Track* found = TrackOf(file, track);
    constexpr MP4Timestamp most = std::numeric_limits<std::int64_t>::max();
    if (found == nullptr || wantSyncSample || when > most) {
        return MP4_INVALID_SAMPLE_ID;
    }
    const auto number = FileOf(file)->SampleAt(*found, static_cast<std::int64_t>(when));
    return number ? *number + 1 : MP4_INVALID_SAMPLE_ID;
}

std::uint32_t MP4GetSampleSize(MP4FileHandle file, MP4TrackId track, MP4SampleId sample) {
    const auto found = SampleOf(file, track, sample);
    return found && FileOf(file)->Holds(*found) ? found->size : 0;
}

bool MP4ReadSample(MP4FileHandle file, MP4TrackId track, MP4SampleId sample, std::uint8_t** bytes,
                   std::uint32_t* byteCount) {
    const auto found = SampleOf(file, track, sample);
    if (!found || bytes == nullptr || *bytes == nullptr || byteCount == nullptr ||
        found->size > *byteCount || !FileOf(file)->Read(*found, *bytes)) {
        return false;
    }
    *byteCount = found->size;
    return true;
}

std::uint32_t MP4GetTimeScale(MP4FileHandle file) {
    const av::Mp4File* read = FileOf(file);
    return read == nullptr ? 0 : read->MovieUnitsPerSecond();
}

MP4FileHandle MP4Create(const char* path, std::uint32_t flags) {
    auto file = path == nullptr || flags != 0 ? nullptr : av::Mp4Writer::Create(path);
    return file == nullptr ? MP4_INVALID_FILE_HANDLE : new File{nullptr, std::move(file)};
}

bool MP4SetTimeScale(MP4FileHandle file, std::uint32_t unitsPerSecond) {
    av::Mp4Writer* made = MadeOf(file);
    if (made == nullptr || unitsPerSecond == 0) {
        return false;
    }
    made->SetUnitsPerSecond(unitsPerSecond);
    return true;
}

MP4TrackId MP4CopyTrack(MP4FileHandle source, MP4TrackId track, MP4FileHandle destination, bool,
                        MP4TrackId) {
    const av::Mp4Track* found = TrackOf(source, track);
    av::Mp4Writer* made = MadeOf(destination);
    const bool copied = found != nullptr && made != nullptr &&
                        made->CopyTrack(FileOf(source)->Path(), found->stream);
    return copied ? MP4TrackId{1} : MP4_INVALID_TRACK_ID;
}

void MP4Close(MP4FileHandle file, std::uint32_t) {
    delete static_cast<File*>(file);
}
