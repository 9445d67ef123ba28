// The frames of one stream and their bytes.
#pragma once

#include <cstdint>
#include <memory>

#include "zanthe/containers/avi20/ChunkHeader.h"
#include "zanthe/containers/avi20/IStream.h"
#include "zanthe/containers/avi20/Index.h"

namespace AVI20::Read {

// A frame that is not there has size 0, offset 0, and is no key frame.
class FrameIndex {
public:
    // Reads the whole index: an old one for an "idx1" chunk, else an OpenDML one. `stream` is
    // borrowed for the life of this object. Throws what Index::Load throws.
    FrameIndex(IStream* stream, const ChunkHeader& chunk, std::uint64_t moviStart);
    FrameIndex(const FrameIndex&) = delete;
    FrameIndex& operator=(const FrameIndex&) = delete;
    virtual ~FrameIndex() = default;

    std::uint32_t GetFrameCount() const { return m_index->GetFrameCount(); }

    std::uint32_t GetFrameSize(std::uint32_t frame) const { return m_index->GetFrameSize(frame); }

    std::uint64_t GetFrameOffset(std::uint32_t frame) const {
        return m_index->GetFrameOffset(frame);
    }

    bool IsKeyFrame(std::uint32_t frame) const { return m_index->IsKeyFrame(frame); }

    // The last key frame at or before `frame`, and 0 where there is none.
    std::uint32_t FindKeyFrame(std::uint32_t frame) const { return m_index->FindKeyFrame(frame); }

    std::uint64_t GetTotalBytes() const { return m_index->GetTotalBytes(); }

    // Whether all of the frame's bytes lie in the stream, so that they can be read; of none they
    // do.
    bool HoldsFrame(std::uint32_t frame) const;

    // Writes GetFrameSize(frame) bytes; true where they could all be read. False, with nothing
    // written, for a frame that is not there.
    bool ReadFrame(std::uint32_t frame, void* buffer) const;

    // Writes up to byteCount bytes from `byteOffset` of the payloads on, and answers how many. It
    // ends early at the end of the stream's payloads, at a frame without bytes, and where the file
    // cannot be read.
    std::uint32_t ReadBytes(std::uint64_t byteOffset, std::uint32_t byteCount, void* buffer) const;

private:
    std::uint32_t ReadPiece(std::uint32_t frame, std::uint32_t inside, std::uint32_t byteCount,
                            unsigned char* buffer) const;

    IStream* m_stream;
    ChunkHeader m_chunk;
    std::unique_ptr<Index> m_index;
};

} // namespace AVI20::Read
