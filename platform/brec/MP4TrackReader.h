// One track of a recording.
#pragma once

#include <cstdint>
#include <string>

namespace BREC {

// What a track holds, as type() answers it.
enum TrackType : int {
    VideoTrack = 0,
    AudioTrack = 1,
    OtherTrack = 2,
};

// Belongs to the reader that gave it out and lives independently of it.
//
// Thread-safety: none; one track serves one thread at a time.
class MP4TrackReader {
public:
    MP4TrackReader() = default;
    MP4TrackReader(const MP4TrackReader&) = delete;
    MP4TrackReader& operator=(const MP4TrackReader&) = delete;
    virtual ~MP4TrackReader() = default;

    // A TrackType.
    virtual int type() const = 0;

    // The four characters of the codec, such as "avc1" or "bsc2".
    virtual std::string codec() const = 0;

    // Size of the coded pictures in pixels; 0 for a track without pictures.
    virtual std::uint32_t width() const = 0;
    virtual std::uint32_t height() const = 0;

    // Length in frames: pictures of a video track; of an audio track sample frames at the rate of
    // the format that the reader was made with, from the recording's time 0 on, counting every
    // frame that begins before the track ends.
    virtual std::uint64_t lengthInFrames() const = 0;

    // Writes the sample frames [startFrame, startFrame + frameCount) to `buffer`, interleaved, in
    // the reader's format, and answers how many were written: fewer at the end of the sound, and
    // where the file cannot be read on. 0 where the track gives no sound. Frame n is what sounds n
    // / rate seconds from the recording's time 0, silence where the track begins later; it is the
    // same whatever was read before.
    virtual unsigned int fillAudioBuffer(std::uint64_t startFrame, unsigned int frameCount,
                                         unsigned char* buffer) = 0;

    // Writes the picture shown at `seconds` to `buffer` as 32-bit pixels (blue, green, red, 255),
    // the top row first and without padding, and the second at which it begins to *outTime; what is
    // shown at that second is this picture again. Before the first picture the first is shown.
    // previousTime is the outTime of the call before, in seconds; the two numbers behind it are 0.
    //
    // False, with buffer and *outTime untouched, before the start and behind the end of the track,
    // where byteCount is less than width() * height() * 4, and where the track gives no picture;
    // buffer alone may have been touched where memory is short.
    virtual bool decodeFrameAtTime(double seconds, unsigned char* buffer, unsigned int byteCount,
                                   double* outTime, double previousTime, double, double) = 0;
};

} // namespace BREC
