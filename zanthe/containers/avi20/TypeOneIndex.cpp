#include "zanthe/containers/avi20/TypeOneIndex.h"

#include "platform/win32/Types.h"
#include "zanthe/containers/avi20/EntryReader.h"

namespace AVI20::Read {

namespace {

struct AVIOLDINDEXEntry {
    DWORD dwChunkId;
    DWORD dwFlags;
    DWORD dwOffset; // of the chunk's header
    DWORD dwSize;
};

static_assert(sizeof(AVIOLDINDEXEntry) == 16, "files hold it as 16 bytes without a gap");

constexpr std::uint64_t kChunkHeaderBytes = 8;

} // namespace

TypeOneIndex::TypeOneIndex(std::uint64_t moviStart)
    : m_moviStart(moviStart) {}

void TypeOneIndex::Load(IStream& stream, std::uint64_t endPosition) {
    EntryReader<AVIOLDINDEXEntry> entries(stream, endPosition);
    Reserve(entries.Left());
    AVIOLDINDEXEntry entry{};
    while (entries.Next(entry)) {
        Append({m_moviStart + entry.dwOffset + kChunkHeaderBytes, entry.dwFlags, entry.dwSize});
    }
    Finish();
}

std::uint64_t TypeOneIndex::GetTotalBytes() const {
    return TotalBytes();
}

} // namespace AVI20::Read
