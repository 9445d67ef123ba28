// The OpenDML index of a stream: a super index ("indx") and the standard indexes that it names.
#pragma once

#include <vector>

#include "platform/win32/Types.h"
#include "zanthe/containers/avi20/TemplatedIndex.h"

namespace AVI20::Read {

// As files hold it.
struct AVISUPERINDEX {
    WORD wLongsPerEntry; // 4
    BYTE bIndexSubType;  // 0
    BYTE bIndexType;     // 0: an index of indexes
    DWORD nEntriesInUse;
    DWORD dwChunkId;
    DWORD dwReserved[3];
};

static_assert(sizeof(AVISUPERINDEX) == 24, "files hold it as 24 bytes without a gap");

struct AVISUPERINDEXEntry {
    std::uint64_t qwOffset; // of the header of a standard index
    DWORD dwSize;
    DWORD dwDuration;
};

static_assert(sizeof(AVISUPERINDEXEntry) == 16, "files hold it as 16 bytes without a gap");

struct TypeTwoRecord {
    TypeTwoFrameInfo Info() const { return {offset, rawSize}; }

    std::uint64_t offset;
    std::uint32_t rawSize;
};

class TypeTwoIndex final : public TemplatedIndex<TypeTwoFrameInfo, TypeTwoRecord> {
public:
    // Index. Throws std::exception for what is no super index; for one that does not fit into its
    // chunk or into the stream; and where the standard indexes hold more entries than fit into the
    // stream, which is what indexes named again and again come to. Of a standard index that the
    // stream ends within, the entries up to there are taken.
    void Load(IStream& stream, std::uint64_t endPosition) override;
    std::uint64_t GetTotalBytes() const override;

private:
    void LoadSuperIndex(IStream& stream, std::uint64_t endPosition);
    void LoadStandardIndex(IStream& stream, const AVISUPERINDEXEntry& place);

    AVISUPERINDEX m_superIndex{};
    std::vector<AVISUPERINDEXEntry> m_standardIndexes;
};

} // namespace AVI20::Read
