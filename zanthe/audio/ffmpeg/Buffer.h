// Planar float samples that know where in the stream they stand.
//
//     Buffer request(planes, frameCount);   // a view of the caller's memory
//     request.start = startFrame;
//     request.copyFrom(decoded);            // takes what both have, each at its own position
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zanthe/audio/ffmpeg/FrameRange.h"

namespace FFMPEGDecoder {

// One plane of samples: its own memory, or a view of somebody else's. Moves, is not copied.
class Channel {
public:
    // A plane of its own, all zero.
    explicit Channel(std::int64_t frames);
    // A view of memory that must outlive it.
    Channel(float* data, std::int64_t frames);

    bool owned() const { return m_storage != nullptr; }

    float* data() const { return m_data; }

    std::int64_t frames() const { return m_frames; }

private:
    std::unique_ptr<float[]> m_storage; // null for a view
    float* m_data;
    std::int64_t m_frames;
};

// Thread-safety: none; a buffer serves one thread at a time.
class Buffer {
public:
    // `channels` planes of their own with `frames` zeros. A size that has no room, a negative one
    // included, ends in the allocator's exception.
    Buffer(int channels, std::int64_t frames);
    // Views of the caller's planes, each of at least `frames` floats.
    Buffer(const std::vector<float*>& planes, std::int64_t frames);

    const std::vector<Channel>& channels() const { return m_channels; }

    // The length of the first plane; 0 without planes.
    std::int64_t frames() const;

    FrameRange range() const { return {start, frames()}; }

    bool empty() const { return frames() == 0; }

    // Views of the frames [from, from + length) as far as this buffer has them; 0 frames at start 0
    // when it has none. Valid while this buffer's memory is.
    Buffer slice(std::int64_t from, std::int64_t length) const;

    // Copies the samples of the positions that both hold. Does nothing unless both have the same
    // number of channels.
    void copyFrom(const Buffer& source);

    // Silences the positions of `span` as far as this buffer has them.
    void zero(const FrameRange& span);

    std::int64_t start = 0; // absolute frame number of the first sample

private:
    explicit Buffer(std::vector<Channel> channels);

    std::vector<Channel> m_channels;
};

} // namespace FFMPEGDecoder
