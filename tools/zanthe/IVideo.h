// A file's pictures as the commands see them, whatever reader stands behind.
//
//     auto video = OpenVideo("clip.mp4", {});
//     if (std::optional<Picture> picture = video->At(MediaTime(5, 2))) ... // else none is shown
//     then
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zanthe/core/MediaTime.h"
#include "zanthe/core/VideoSample.h"

namespace Program {

// What the fourth byte of a pixel means.
enum class Alpha {
    None,         // nothing: the picture is opaque
    Straight,     // how much of the colour covers
    Premultiplied // the same, and the colour is multiplied by it already
};

// What holds for all pictures of a video.
struct VideoFacts {
    int width = 0; // pixels as stored
    int height = 0;
    int rotation = 0; // clockwise turn that the stored picture needs: 0, 90, 180, 270
    std::int64_t aspectNumerator = 1; // shape of a stored pixel, width to height
    std::int64_t aspectDenominator = 1;
    std::optional<std::int64_t> duration = {}; // 100 ns, where the reader tells it
    bool tellsTimes = false;                   // every picture comes with its start and duration
    Alpha alpha = Alpha::None;

    // When each picture begins, in 100 ns, and when the last one ends, rising: where the file tells
    // it and the reader does not. Empty: not known. The reader may give the last one for longer.
    std::vector<std::int64_t> edges = {};

    // The times that come with pictures are those that were asked for, and mean nothing.
    bool echoesTimes = false;
    std::optional<int> stream = {}; // the number of the stream that is read, where that is known
    std::string reader = {};        // what reads it, in a word or two

    // Rotation and aspect are those of the very track that is read: they go before a reader's own
    // word, which may be about another.
    bool shapeIsOfTrack = false;

    // Why there may be no picture at all, for a person; empty: not known.
    std::string ifNone = {};

    // What a person ought to know of how it is shown, one line each, without a full stop.
    std::vector<std::string> remarks = {};
};

// Times are in 100 ns from the start of the video, and there where the reader tells them.
struct Picture {
    std::unique_ptr<Zanthe::VideoSample> sample; // its pixels hold until the next At
    std::optional<std::int64_t> start = {};
    std::optional<std::int64_t> duration = {};
    std::optional<std::uint32_t> matrix = {}; // of the colours: 1 BT.709, 2 BT.601, 3 SMPTE 240M
    std::optional<std::uint32_t> range = {};  // 1 full, 2 video, 3 48 to 208; 0 is not told
};

// Thread-safety: none.
class IVideo {
public:
    IVideo() = default;
    IVideo(const IVideo&) = delete;
    IVideo& operator=(const IVideo&) = delete;
    virtual ~IVideo() = default;

    virtual const VideoFacts& Facts() const = 0;

    // The picture shown at `time`; nothing when there is none. Where a video tells times, a picture
    // covers [start - 1, start + duration), and the next one begins at start + duration + 1.
    //
    // Throws std::exception with the library's text.
    virtual std::optional<Picture> At(const Zanthe::MediaTime& time) = 0;

    // What the reader did to serve the latest At, in words and in order; empty where it keeps none.
    virtual std::vector<std::string> Operations() const = 0;
};

} // namespace Program
