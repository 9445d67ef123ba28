// The pictures of one video stream of a file, from any time on.
//
//     auto stream = VideoStream::Open(path, {});
//     stream->Seek(50'000'000);                 // 5 s
//     PicturePtr picture;
//     while (stream->Read(picture) == ReadResult::Picture) { ... }  // the one shown at 5 s is
//     first
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/av/Picture.h"
#include "platform/av/WorkCounters.h"

namespace av {

struct VideoOptions {
    int ordinal = 0; // which of the file's video streams, attached pictures not counted
    AVBufferRef* device = nullptr; // borrowed: decode on this FFmpeg hardware device where it can
};

// What the file says of the stream.
struct VideoFacts {
    AVCodecID codec = AV_CODEC_ID_NONE;
    std::uint32_t tag = 0; // four-character code as stored, first character lowest; 0: none
    int streamIndex = 0;   // in the file, over all streams
    int width = 0, height = 0;
    AVRational frameRate{0, 1};   // 0/1: unknown
    AVRational pixelAspect{1, 1}; // 1/1 also where the file is silent
    // The codec's parameter sets in Annex B form (H.264 and HEVC), else as stored; may be empty.
    std::vector<std::uint8_t> sequenceHeader;
    std::int64_t duration = 0; // of the file in 100 ns; 0: unknown
    int rotation = 0;          // clockwise degrees by the display matrix: 0, 90, 180, 270
};

enum class ReadResult {
    Picture, // a picture was read
    End,     // there is none behind the last one
    Failed,  // the file or its decoder gave out here; Seek starts anew
};

struct FileFacts;

// Thread-safety: none; one thread at a time. The decoded pictures of all streams share one cache.
class VideoStream {
public:
    // Null when the file cannot be opened, has no such stream, or nothing decodes it.
    static std::unique_ptr<VideoStream> Open(const std::string& path, const VideoOptions& options);

    virtual ~VideoStream() = default;

    virtual const VideoFacts& Facts() const = 0;

    // What else is in its file (FileFacts.h).
    virtual const FileFacts& File() const = 0;

    // The next Read gives the picture shown at `time` (100 ns): the one with Start() <= time <
    // End(), the stream's first where `time` lies before it, and End where it lies behind the last
    // one's end. Cheap: the work is done by Read. False only when the file cannot be sought at all.
    virtual bool Seek(std::int64_t time) = 0;

    // The next picture in order of presentation. Times rise strictly from one picture to the next
    // and a picture ends where the next one starts, whatever was read before.
    virtual ReadResult Read(PicturePtr& picture) = 0;

    // Whether the picture read last is the stream's last one, so that nothing starts where it ends.
    virtual bool AtEnd() const = 0;

    // Since the opening.
    virtual const WorkCounters& Counters() const = 0;
};

} // namespace av
