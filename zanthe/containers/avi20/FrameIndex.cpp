#include "zanthe/containers/avi20/FrameIndex.h"

#include <algorithm>

#include "zanthe/containers/avi20/AviHeaders.h"
#include "zanthe/containers/avi20/TypeOneIndex.h"
#include "zanthe/containers/avi20/TypeTwoIndex.h"

namespace AVI20::Read {

namespace {

std::unique_ptr<Index> MakeIndex(const ChunkHeader& chunk, std::uint64_t moviStart) {
    if (chunk.fourcc == FourCc("idx1")) {
        return std::make_unique<TypeOneIndex>(moviStart);
    }
    return std::make_unique<TypeTwoIndex>();
}

} // namespace

FrameIndex::FrameIndex(IStream* stream, const ChunkHeader& chunk, std::uint64_t moviStart)
    : m_stream(stream)
    , m_chunk(chunk)
    , m_index(MakeIndex(chunk, moviStart)) {
    m_stream->Rewind();
    m_stream->Seek(ContentOf(m_chunk));
    m_index->Load(*m_stream, EndOf(m_chunk));
}

bool FrameIndex::HoldsFrame(std::uint32_t frame) const {
    const std::uint64_t offset = GetFrameOffset(frame);
    const std::uint64_t size = m_stream->Size();
    const std::uint32_t needed = GetFrameSize(frame);
    return frame < GetFrameCount() && (needed == 0 || (offset <= size && needed <= size - offset));
}

bool FrameIndex::ReadFrame(std::uint32_t frame, void* buffer) const {
    return frame < GetFrameCount() && m_stream->Seek(GetFrameOffset(frame)) &&
           m_stream->Read(buffer, GetFrameSize(frame));
}

std::uint32_t FrameIndex::ReadBytes(std::uint64_t byteOffset, std::uint32_t byteCount,
                                    void* buffer) const {
    const std::int64_t first = m_index->GetFrameAtByteOffset(byteOffset);
    if (first < 0 || byteOffset >= GetTotalBytes()) {
        return 0;
    }
    auto frame = static_cast<std::uint32_t>(first);
    auto inside = static_cast<std::uint32_t>(byteOffset - m_index->GetByteOffsetOfFrame(frame));
    auto* to = static_cast<unsigned char*>(buffer);
    std::uint32_t done = 0;
    while (done < byteCount) {
        const std::uint32_t read = ReadPiece(frame, inside, byteCount - done, to + done);
        if (read == 0) {
            break;
        }
        done += read;
        ++frame;
        inside = 0;
    }
    return done;
}

// What one frame has of the bytes; 0 where it has none or cannot be read.
std::uint32_t FrameIndex::ReadPiece(std::uint32_t frame, std::uint32_t inside,
                                    std::uint32_t byteCount, unsigned char* buffer) const {
    const std::uint32_t size = GetFrameSize(frame);
    if (size <= inside) {
        return 0;
    }
    const std::uint32_t count = std::min(size - inside, byteCount);
    const bool read =
        m_stream->Seek(GetFrameOffset(frame) + inside) && m_stream->Read(buffer, count);
    return read ? count : 0;
}

} // namespace AVI20::Read
