// Reads a file by many small pieces with few calls of the system: each of those fetches a few
// kilobytes more than was asked for, and what is passed over is not read at all.
//
//     win32::ReadAhead ahead;
//     if (ahead.Read(file, position, bytes, sizeof bytes)) ...
#pragma once

#include <array>
#include <cstdint>

#include "platform/win32/Handle.h"

namespace win32 {

// Thread-safety: none.
class ReadAhead {
public:
    // Fills `buffer` with exactly byteCount bytes of `file`, which is the same at every call, from
    // `position` on. False when the file has fewer there or cannot be read.
    bool Read(HANDLE file, std::uint64_t position, void* buffer, std::uint64_t byteCount);

private:
    bool Holds(std::uint64_t position) const;
    bool Fetch(HANDLE file, std::uint64_t position);

    std::array<char, 4096> m_bytes{}; // of the file,
    std::uint64_t m_start = 0;        // from this position on,
    std::uint64_t m_length = 0;       // so many of them
};

} // namespace win32
