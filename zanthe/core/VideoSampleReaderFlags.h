// How a frame is asked for.
//
//     reader->readVideoSample(time, {}, VideoSampleReaderFlags::QuickAnswer);
#pragma once

namespace Zanthe {

// A set of bits; a bit without a name here is without effect.
enum class VideoSampleReaderFlags : unsigned int {
    None = 0,
    // The caller wants an answer soon and accepts none: for scrubbing, where the next request is on
    // its way. A DirectShow reader then waits 0.1 seconds for the sample instead of 1.0.
    QuickAnswer = 1,
};

constexpr VideoSampleReaderFlags operator|(VideoSampleReaderFlags a, VideoSampleReaderFlags b) {
    return static_cast<VideoSampleReaderFlags>(static_cast<unsigned int>(a) |
                                               static_cast<unsigned int>(b));
}

constexpr VideoSampleReaderFlags operator&(VideoSampleReaderFlags a, VideoSampleReaderFlags b) {
    return static_cast<VideoSampleReaderFlags>(static_cast<unsigned int>(a) &
                                               static_cast<unsigned int>(b));
}

constexpr VideoSampleReaderFlags operator~(VideoSampleReaderFlags a) {
    return static_cast<VideoSampleReaderFlags>(~static_cast<unsigned int>(a));
}

constexpr VideoSampleReaderFlags& operator|=(VideoSampleReaderFlags& a, VideoSampleReaderFlags b) {
    return a = a | b;
}

constexpr VideoSampleReaderFlags& operator&=(VideoSampleReaderFlags& a, VideoSampleReaderFlags b) {
    return a = a & b;
}

// Whether all bits of `wanted` are in `flags`.
constexpr bool HasFlags(VideoSampleReaderFlags flags, VideoSampleReaderFlags wanted) {
    return (flags & wanted) == wanted;
}

} // namespace Zanthe
