// What a file is by its first bytes: a table of masked comparisons, and the extension where none
// of them holds.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "platform/com/Guid.h"

// One masked comparison: (byte AND mask) must equal value, for each of `length` bytes.
struct FileSignatureCheck {
    std::int64_t offset;  // of the first byte; a negative one counts from the end of the file
    std::uint32_t length; // bytes to read, at most MaxSignatureLength
    std::vector<std::uint8_t> mask;
    std::vector<std::uint8_t> value;
};

// A file that passes all checks is of this subtype.
struct FileSignatureEntry {
    GUID subtype;
    std::vector<FileSignatureCheck> checks;
};

inline constexpr std::uint32_t MaxSignatureLength = 256; // bytes

// In the order in which they are tried. Filled when the library is loaded and never changed after.
extern const std::vector<FileSignatureEntry> FileSignatureTable;

// The first entry of `table` all of whose checks hold for `file`, a stream of bytes that can be
// positioned; null when there is none. The entry is the table's own. A check whose mask and value
// are not both `length` bytes long, that is longer than MaxSignatureLength, or whose bytes the file
// does not have, does not hold.
//
// Thread-safety: safe from any thread, on different streams.
const FileSignatureEntry* FindSignature(std::istream& file,
                                        const std::vector<FileSignatureEntry>& table);

// The media subtype of a file: by FileSignatureTable, else by the extension "avi", "mp3", "wav",
// "mpg" or "mpeg" (the text behind the path's last dot, or the path itself without a dot), case
// ignored. MEDIASUBTYPE_None for anything else, for what cannot be opened or is no regular file,
// and for a recording (".brec", with or without a member), which is not opened at all.
//
// Thread-safety: safe from any thread.
GUID DetectMediaSubtype(const std::wstring& path);
