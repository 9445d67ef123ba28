// Any bytes as the start of a file, held against the table of signatures; and, with their first
// bytes for a check of its own, against themselves.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/dshow/Uuids.h"
#include "zanthe/analysis/FileSignature.h"

namespace {

struct Bytes {
    const std::uint8_t* data;
    std::size_t size;

    bool operator()(std::int64_t offset, std::uint32_t length, std::uint8_t* target) const {
        const auto end = static_cast<std::int64_t>(size);
        if (offset < -end || offset > end) {
            return false;
        }
        const std::int64_t start = offset < 0 ? end + offset : offset;
        if (end - start < static_cast<std::int64_t>(length)) {
            return false;
        }
        std::copy_n(data + start, length, target); // target may be null where length is 0
        return true;
    }
};

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// The input's first eleven bytes: an offset, and one length each for the check, its mask and value.
// What it finds at that offset it must find again.
void CheckOwnEntry(const Bytes& file) {
    std::uint8_t head[11];
    if (!file(0, sizeof head, head)) {
        return;
    }
    FileSignatureCheck check{};
    std::memcpy(&check.offset, head, sizeof check.offset);
    check.length = head[8] * 2U; // beyond what a check can hold, too
    check.mask.assign(head[9] * 2U, 0xFF);
    check.value.assign(head[10] * 2U, 0);
    const bool fits = check.length <= MaxSignatureLength && check.mask.size() == check.length &&
                      check.value.size() == check.length;
    const bool there = fits && file(check.offset, check.length, check.value.data());
    const std::vector<FileSignatureEntry> table{{GUID_NULL, {check}}};
    Require((FindSignature(file, table) != nullptr) == there);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes file{data, size};
    const FileSignatureEntry* entry = FindSignature(file, FileSignatureTable);
    Require(entry == nullptr || (entry >= FileSignatureTable.data() &&
                                 entry < FileSignatureTable.data() + FileSignatureTable.size()));
    CheckOwnEntry(file);
    return 0;
}
