// The frames of one stream of an AVI file, in order.
#pragma once

#include <cstdint>
#include <memory>

#include "zanthe/containers/avi20/FrameInfo.h"
#include "zanthe/containers/avi20/IStream.h"

namespace AVI20::Read {

// Frames are counted from 0. Byte offsets count through the frames' payloads as if they stood one
// behind the other.
class Index {
public:
    Index() = default;
    Index(const Index&) = delete;
    Index& operator=(const Index&) = delete;
    virtual ~Index() = default;

    // REQUIRES: frame < GetFrameCount().
    virtual std::shared_ptr<FrameInfo> GetFrameInfo(std::uint32_t frame) const = 0;

    virtual std::uint32_t GetFrameCount() const = 0;

    // Reads the index at the stream's position, which ends at `endPosition`. Called once. Throws
    // std::exception, a plain one, where it is none or can be none.
    virtual void Load(IStream& stream, std::uint64_t endPosition) = 0;

    virtual std::uint64_t GetTotalBytes() const = 0;

    // GetTotalBytes() for a frame that is not there.
    virtual std::uint64_t GetByteOffsetOfFrame(std::uint32_t frame) const = 0;

    // The last frame that begins at or before `byteOffset`; -1 where there are no frames.
    virtual std::int64_t GetFrameAtByteOffset(std::uint64_t byteOffset) const = 0;

    // Behind the operations above, whose order is settled: the answers of GetFrameInfo without an
    // object for each, and 0 or false for a frame that is not there.
    virtual std::uint64_t GetFrameOffset(std::uint32_t frame) const = 0;
    virtual std::uint32_t GetFrameSize(std::uint32_t frame) const = 0;
    virtual bool IsKeyFrame(std::uint32_t frame) const = 0;

    // The last key frame at or before `frame`; 0 where there is none.
    virtual std::uint32_t FindKeyFrame(std::uint32_t frame) const = 0;
};

} // namespace AVI20::Read
