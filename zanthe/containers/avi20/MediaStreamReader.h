// One stream of an AVI file: how many frames, where each lies, which are key frames, their bytes.
#pragma once

#include <cstdint>
#include <memory>

#include "zanthe/containers/avi20/StreamInfo.h"

namespace AVI20::Read {

class MediaStreamReaderImpl;

// The bytes of a frame.
struct FrameBuffer {
    std::unique_ptr<unsigned char[]> data;
    std::uint32_t size = 0;
};

// A handle, copied freely, which must not outlive its Reader. One without a stream is invalid and
// answers 0, false, null or an all-zero value everywhere.
//
// Frames are counted from 0; one that is not there has size 0, offset 0, and is no key frame.
//
// Thread-safety: none; all handles of one Reader share the position of its stream.
class MediaStreamReader {
public:
    // `impl` is borrowed; null makes an invalid handle.
    explicit MediaStreamReader(const MediaStreamReaderImpl* impl = nullptr)
        : m_impl(impl) {}

    MediaStreamReader(const MediaStreamReader&) = default;
    MediaStreamReader& operator=(const MediaStreamReader&) = default;
    virtual ~MediaStreamReader() = default;

    virtual bool IsValid() const;
    virtual std::uint32_t GetFrameCount() const;

    // Of the payload, in bytes.
    virtual std::uint32_t GetFrameSize(std::uint32_t frame) const;

    // Of the payload, from the start of the file.
    virtual std::uint64_t GetFrameOffset(std::uint32_t frame) const;

    // Writes GetFrameSize(frame) bytes into the caller's buffer; true where all could be read.
    virtual bool ReadFrame(std::uint32_t frame, void* buffer) const;

    // Writes up to byteCount bytes from `byteOffset` of the stream's payloads on, one behind the
    // other, and answers how many. It ends early at the end, at a frame without bytes, and where
    // the file cannot be read.
    virtual std::uint32_t ReadBytes(std::uint64_t byteOffset, std::uint32_t byteCount,
                                    void* buffer) const;

    // Of all payloads together.
    virtual std::uint64_t GetTotalBytes() const;

    // The frame in memory of its own; null where it cannot be read.
    virtual std::unique_ptr<FrameBuffer> ReadFrameToNewBuffer(std::uint32_t frame) const;

    virtual StreamInfo GetStreamInfo() const;
    virtual bool IsKeyFrame(std::uint32_t frame) const;

    // The last key frame at or before `frame`. Frame 0 is taken for one unasked.
    virtual std::uint32_t FindKeyFrame(std::uint32_t frame) const;

    // "vids": frames by the header's rate; a rate of 0 gives an infinite or undefined duration.
    // "auds": bytes by the format's rate, whole blocks only of PCM, and 0 where those have no size.
    // Else 0.
    virtual double GetDurationSeconds() const;

private:
    const MediaStreamReaderImpl* m_impl;
};

} // namespace AVI20::Read
