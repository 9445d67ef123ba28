// What streams of sound and video a file has.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/av/StreamFacts.h"
#include "platform/av/VideoStream.h"

namespace av {

struct FileStream {
    TrackKind kind = TrackKind::Other;  // Video or Audio
    int ordinal = 0;                    // among the file's streams of its kind
    VideoFacts video;                   // of a video stream
    AVCodecID codec = AV_CODEC_ID_NONE; // of a sound stream, as are the next ones
    std::uint32_t tag = 0;              // as in VideoFacts; the WAVE_FORMAT tag in some containers
    int channels = 0;
    int sampleRate = 0;
    std::uint64_t layout = 0; // as in SoundFormat
    int bitsPerSample = 0;    // 0 where the codec has no such thing
};

struct FileFacts {
    std::string container;     // FFmpeg's short name of it, or several with commas
    std::int64_t duration = 0; // in 100 ns; 0: unknown
    // In the order of the file; attached pictures are no streams.
    std::vector<FileStream> streams;
};

// REQUIRES: avformat_find_stream_info has been through.
FileFacts FactsOf(const AVFormatContext& format);

// Of the file at `path` (UTF-8, a regular file); nothing where it cannot be opened.
// Thread-safety: safe from any thread.
std::optional<FileFacts> ReadFileFacts(const std::string& path);

// FFmpeg's name of a codec, "none" for AV_CODEC_ID_NONE; and whether it has a decoder.
const char* CodecName(AVCodecID codec);
bool HasDecoder(AVCodecID codec);

} // namespace av
