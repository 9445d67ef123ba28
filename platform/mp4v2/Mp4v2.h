// The tables and samples of MP4 and QuickTime files. Stands for mp4v2/mp4v2.h, and is that header
// where the library was built with libmp4v2.
//
//     MP4FileHandle file = MP4Read(path);
//     if (file != MP4_INVALID_FILE_HANDLE)
//         ... MP4FindTrackId(file, 0, MP4_AUDIO_TRACK_TYPE, 0) ... MP4Close(file, 0);
#pragma once

#ifdef ZANTHE_INSTALLED_MP4V2

#include <mp4v2/mp4v2.h>

#else

#include <cstdint>

using MP4FileHandle = void*;
using MP4TrackId = std::uint32_t;
using MP4SampleId = std::uint32_t;
using MP4Duration = std::uint64_t;
using MP4Timestamp = std::uint64_t;

inline constexpr MP4FileHandle MP4_INVALID_FILE_HANDLE = nullptr;
inline constexpr MP4TrackId MP4_INVALID_TRACK_ID = 0;
inline constexpr MP4SampleId MP4_INVALID_SAMPLE_ID = 0;
inline constexpr MP4Duration MP4_INVALID_DURATION = ~MP4Duration{0};
inline constexpr MP4Timestamp MP4_INVALID_TIMESTAMP = ~MP4Timestamp{0};

inline constexpr const char* MP4_AUDIO_TRACK_TYPE = "soun";
inline constexpr const char* MP4_VIDEO_TRACK_TYPE = "vide";

// Thread-safety: safe from any thread; one handle serves one thread at a time.
//
// A handle on a file that is being made has no tracks and no samples for the calls that read.

// A handle on the file at `path` (UTF-8, found as it stands), the caller's to give to MP4Close.
// MP4_INVALID_FILE_HANDLE when it cannot be read or is no file of this family.
MP4FileHandle MP4Read(const char* path);

// The id of the track that is number `index`, from 0, among those whose handler is `type`, whatever
// their coding; null counts all tracks. MP4_INVALID_TRACK_ID when there are not so many. subType
// would narrow the search to one coding; only 0, any coding, is offered, and finds no track
// otherwise.
MP4TrackId MP4FindTrackId(MP4FileHandle file, std::uint16_t index, const char* type,
                          std::uint8_t subType);

// How many tracks MP4FindTrackId finds for these two.
std::uint32_t MP4GetNumberOfTracks(MP4FileHandle file, const char* type = nullptr,
                                   std::uint8_t subType = 0);

// The four characters of the track's sample description, such as "avc1", valid as long as the
// handle; null where it has none or several, and where there is no such track.
const char* MP4GetTrackMediaDataName(MP4FileHandle file, MP4TrackId track);

// The size of the track's pictures in pixels by its sample description; 0 where it tells none.
std::uint16_t MP4GetTrackVideoWidth(MP4FileHandle file, MP4TrackId track);
std::uint16_t MP4GetTrackVideoHeight(MP4FileHandle file, MP4TrackId track);

// Whether the track has the atom `atomPath`, named from within its "trak". Offered for the atoms
// below "mdia.minf.stbl.stsd", its sample descriptions: "mdia.minf.stbl.stsd.mp4a". False for any
// other path, and where there is no such track.
bool MP4HaveTrackAtom(MP4FileHandle file, MP4TrackId track, const char* atomPath);

// Of the track's own media, edit lists left aside; MP4GetTrackDuration in the units that
// MP4GetTrackTimeScale tells for a second. Samples in fragments count.
// MP4_INVALID_DURATION, 0 and 0 where there is no such track.
MP4Duration MP4GetTrackDuration(MP4FileHandle file, MP4TrackId track);
std::uint32_t MP4GetTrackTimeScale(MP4FileHandle file, MP4TrackId track);
MP4SampleId MP4GetTrackNumberOfSamples(MP4FileHandle file, MP4TrackId track);

// Of the track's sample `sample`, counted from 1 in the order of decoding: 1 for one that can be
// decoded without another, 0 for one that cannot, -1 where there is no such sample.
std::int8_t MP4GetSampleSync(MP4FileHandle file, MP4TrackId track, MP4SampleId sample);

// The sample that is decoded at `when`, in the track's units: the last one to begin at or before
// it. MP4_INVALID_SAMPLE_ID at and behind the track's end. wantSyncSample would go on to one that
// can be decoded without another; only false is offered, and finds no sample otherwise.
MP4SampleId MP4GetSampleIdFromTime(MP4FileHandle file, MP4TrackId track, MP4Timestamp when,
                                   bool wantSyncSample = false);

// The bytes of one sample. 0 where there is no such sample, and where the file ends before it does.
std::uint32_t MP4GetSampleSize(MP4FileHandle file, MP4TrackId track, MP4SampleId sample);

// Writes the sample's bytes to *bytes, the caller's, of which *byteCount tells the size and is then
// told how many there are. False, and *byteCount as it was, when they do not fit or cannot be read.
bool MP4ReadSample(MP4FileHandle file, MP4TrackId track, MP4SampleId sample, std::uint8_t** bytes,
                   std::uint32_t* byteCount);

// When it is decoded, in the track's units, the track's start being 0; MP4_INVALID_TIMESTAMP where
// there is no such sample.
MP4Timestamp MP4GetSampleTime(MP4FileHandle file, MP4TrackId track, MP4SampleId sample);

// Units a second of the file itself, by its movie header; 0 where there is no such file.
std::uint32_t MP4GetTimeScale(MP4FileHandle file);

// A handle on a new file at `path`, which takes the place of what is there, the caller's to give to
// MP4Close. MP4_INVALID_FILE_HANDLE when it cannot be written. flags: only 0 is offered.
MP4FileHandle MP4Create(const char* path, std::uint32_t flags);

// Of a file that is being made; false for any other, and for 0.
bool MP4SetTimeScale(MP4FileHandle file, std::uint32_t unitsPerSecond);

// Puts a copy of the track into `destination`, a file that is being made, samples and what the edit
// list makes of their times as they are, and answers its id there. One track is offered.
// MP4_INVALID_TRACK_ID when it cannot be read or written. applyEdits and hintReference play no
// part: edits stay edits, and hint tracks are not made.
MP4TrackId MP4CopyTrack(MP4FileHandle source, MP4TrackId track, MP4FileHandle destination,
                        bool applyEdits, MP4TrackId hintReference = MP4_INVALID_TRACK_ID);

// Ends the handle; a file that is being made is complete then. flags play no part.
void MP4Close(MP4FileHandle file, std::uint32_t flags);

#endif
