// The old index of an AVI file, its "idx1" chunk.
#pragma once

#include "zanthe/containers/avi20/TemplatedIndex.h"

namespace AVI20::Read {

struct TypeOneRecord {
    TypeOneFrameInfo Info() const { return {flags, offset, size}; }

    std::uint64_t offset;
    std::uint32_t flags;
    std::uint32_t size;
};

// Every entry is a frame of each stream that uses this index: in a file of several streams all of
// them show the chunks of all. The recordings that are read have one stream that matters.
class TypeOneIndex final : public TemplatedIndex<TypeOneFrameInfo, TypeOneRecord> {
public:
    // moviStart: of the type word of the "movi" list, which the entries count from.
    explicit TypeOneIndex(std::uint64_t moviStart);

    // Index. Entries behind the end of the stream are not there. Throws for too many frames.
    void Load(IStream& stream, std::uint64_t endPosition) override;
    std::uint64_t GetTotalBytes() const override;

private:
    std::uint64_t m_moviStart;
};

} // namespace AVI20::Read
