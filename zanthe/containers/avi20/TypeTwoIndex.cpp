#include "zanthe/containers/avi20/TypeTwoIndex.h"

#include <exception>

#include "zanthe/containers/avi20/EntryReader.h"

namespace AVI20::Read {

namespace {

#pragma pack(push, 4)

struct AVISTDINDEX {
    WORD wLongsPerEntry;
    BYTE bIndexSubType;
    BYTE bIndexType;
    DWORD nEntriesInUse;
    DWORD dwChunkId;
    std::uint64_t qwBaseOffset; // what the entries count from
    DWORD dwReserved;
};

#pragma pack(pop)

static_assert(sizeof(AVISTDINDEX) == 24, "files hold it as 24 bytes without a gap");

struct AVISTDINDEXEntry {
    DWORD dwOffset; // of the payload
    DWORD dwSize;   // bit 31: no key frame
};

static_assert(sizeof(AVISTDINDEXEntry) == 8, "files hold it as 8 bytes without a gap");

constexpr std::uint64_t kChunkHeaderBytes = 8;

} // namespace

void TypeTwoIndex::Load(IStream& stream, std::uint64_t endPosition) {
    LoadSuperIndex(stream, endPosition);
    for (const AVISUPERINDEXEntry& place : m_standardIndexes) {
        LoadStandardIndex(stream, place);
    }
    Finish();
}

void TypeTwoIndex::LoadSuperIndex(IStream& stream, std::uint64_t endPosition) {
    static_cast<void>(stream.Read(&m_superIndex, sizeof m_superIndex));
    const std::uint64_t byteCount =
        std::uint64_t{m_superIndex.nEntriesInUse} * sizeof(AVISUPERINDEXEntry);
    const std::uint64_t end = stream.Position() + byteCount;
    if (m_superIndex.wLongsPerEntry != 4 || m_superIndex.bIndexType != 0 ||
        m_superIndex.bIndexSubType != 0 || end > endPosition || end > stream.Size()) {
        throw std::exception();
    }
    EntryReader<AVISUPERINDEXEntry> entries(stream, end);
    m_standardIndexes.reserve(entries.Left());
    AVISUPERINDEXEntry entry{};
    while (entries.Next(entry)) {
        m_standardIndexes.push_back(entry);
    }
}

void TypeTwoIndex::LoadStandardIndex(IStream& stream, const AVISUPERINDEXEntry& place) {
    AVISTDINDEX header{};
    // A place that cannot be gone to or read from holds no entries.
    if (!stream.Seek(place.qwOffset + kChunkHeaderBytes) || !stream.Read(&header, sizeof header)) {
        return;
    }
    EntryReader<AVISTDINDEXEntry> entries(
        stream, stream.Position() + std::uint64_t{header.nEntriesInUse} * sizeof(AVISTDINDEXEntry));
    if (GetFrameCount() + entries.Left() > stream.Size() / sizeof(AVISTDINDEXEntry)) {
        throw std::exception();
    }
    Reserve(entries.Left());
    AVISTDINDEXEntry entry{};
    while (entries.Next(entry)) {
        Append({header.qwBaseOffset + entry.dwOffset, entry.dwSize});
    }
}

std::uint64_t TypeTwoIndex::GetTotalBytes() const {
    return TotalBytes();
}

} // namespace AVI20::Read
