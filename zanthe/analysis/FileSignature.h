// What a file is by its first bytes: a table of masked comparisons, and the extension where none
// of them holds.
#pragma once

#include <cstdint>
#include <functional>
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

// Copies `length` bytes of a file to `bytes`, from `offset` (as in a check) on. False when the file
// does not have them all.
using SignatureReader =
    std::function<bool(std::int64_t offset, std::uint32_t length, std::uint8_t* bytes)>;

// The first entry of `table` all of whose checks hold; null when there is none. The entry is the
// table's own. A check does not hold whose bytes cannot be read, whose mask and value are not both
// `length` bytes long, or that is longer than MaxSignatureLength.
//
// Thread-safety: safe from any thread, as far as `read` is.
const FileSignatureEntry* FindSignature(const SignatureReader& read,
                                        const std::vector<FileSignatureEntry>& table);

// The media subtype of a file: by FileSignatureTable, else by the extension "avi", "mp3", "wav",
// "mpg" or "mpeg" (the text behind the path's last dot, or the path itself without a dot), case
// ignored. MEDIASUBTYPE_None for anything else, for what cannot be opened or is no regular file,
// and for a recording (".brec", with or without a member), which is not opened at all.
//
// Thread-safety: safe from any thread.
GUID DetectMediaSubtype(const std::wstring& path);

// The same answer with what it was told by.
enum class SubtypeSource { Nothing, Signature, Extension };

struct DetectedSubtype {
    GUID subtype;
    SubtypeSource source; // Nothing where the subtype is MEDIASUBTYPE_None
};

DetectedSubtype DetectMediaSubtypeAndSource(const std::wstring& path);
