#include "platform/win32/ReadAhead.h"

#include <algorithm>
#include <cstring>

#include "platform/win32/File.h"

namespace win32 {

bool ReadAhead::Read(HANDLE file, std::uint64_t position, void* buffer, std::uint64_t byteCount) {
    auto* target = static_cast<char*>(buffer);
    while (byteCount > 0) {
        if (!Holds(position) && !Fetch(file, position)) {
            return false;
        }
        const std::uint64_t offset = position - m_start;
        const std::uint64_t count = std::min(byteCount, m_length - offset);
        std::memcpy(target, m_bytes.data() + offset, count);
        position += count;
        target += count;
        byteCount -= count;
    }
    return true;
}

bool ReadAhead::Holds(std::uint64_t position) const {
    return position >= m_start && position - m_start < m_length;
}

// A position beyond 63 bits comes out as negative and is refused by the system.
bool ReadAhead::Fetch(HANDLE file, std::uint64_t position) {
    LARGE_INTEGER start;
    start.QuadPart = static_cast<std::int64_t>(position);
    DWORD got = 0;
    m_length = 0; // a read that fails may have overwritten some of what was held
    if (SetFilePointerEx(file, start, nullptr, FILE_BEGIN) == FALSE ||
        ReadFile(file, m_bytes.data(), static_cast<DWORD>(m_bytes.size()), &got, nullptr) ==
            FALSE) {
        return false;
    }
    m_start = position;
    m_length = got;
    return got > 0;
}

} // namespace win32
