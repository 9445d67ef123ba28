// The compressed pictures of one video stream of a file, in the order in which they are decoded.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/av/Demuxer.h"
#include "platform/av/Landing.h"
#include "platform/av/PacketFeed.h"
#include "platform/av/PictureClock.h"

namespace av {

struct CompressedPicture {
    std::vector<std::uint8_t> bytes; // as the file holds them
    std::int64_t start = 0;          // when it is shown, in 100 ns
    std::int64_t duration = 0;       // in 100 ns, at least 1
    bool isKey = false;              // whether the container calls it a key frame
};

// The starts of key frames, in 100 ns; empty where there is none on that side.
struct KeyFrames {
    std::optional<std::int64_t> atOrBefore;
    std::optional<std::int64_t> atOrAfter;
};

// Thread-safety: none.
class CompressedStream {
public:
    // Null where there is no such stream; `ordinal` as in VideoOptions.
    static std::unique_ptr<CompressedStream> Open(const std::string& path, int ordinal);

    // The next Read gives the last key frame that starts at or before `time`, or the first picture;
    // the first one too where the pictures have no times of their own. False when the file cannot
    // be read any more.
    bool Seek(std::int64_t time);

    // Empty at the end of the file.
    std::optional<CompressedPicture> Read();

    // The key frames next to `time`. Only those are read that can be one of them, where the file
    // has an index; else all from the one before on. It moves the stream: Seek before the next
    // Read.
    KeyFrames KeyFramesAround(std::int64_t time);

private:
    explicit CompressedStream(std::unique_ptr<Demuxer> demuxer);

    std::int64_t StartOf(const AVPacket& packet) const;
    std::int64_t DurationOf(const AVPacket& packet, std::int64_t start) const;
    void Pass();

    const std::unique_ptr<Demuxer> m_demuxer;
    PacketFeed m_feed;
    const PictureClock m_clock;
    const std::int64_t m_usualDuration;
    Landing m_landing;
    std::int64_t m_passed =
        0; // packets since the start, which times are counted from where need be
};

} // namespace av
