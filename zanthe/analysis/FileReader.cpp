#include "zanthe/analysis/FileReader.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "platform/win32/File.h"
#include "zanthe/analysis/MP4ParseException.h"

void FileReader::Open(const std::wstring& path) {
    m_file.reset(OpenHandle(path));
    RequireFileType();
    Seek(0);
}

HANDLE FileReader::OpenHandle(const std::wstring& path) const {
    // A transaction needs CreateFileTransactedW, a call that kernel32.dll of a few systems exports
    // and this one does not, so a file inside a transaction is out of reach.
    if (m_context != nullptr && (m_context->transaction != nullptr || !m_context->openPlainly)) {
        throw MP4ParseException();
    }
    const HANDLE handle = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        throw MP4ParseException();
    }
    return handle;
}

void FileReader::RequireFileType() {
    char start[8];
    Read(start, sizeof start);
    if (std::string_view(start + 4, 4) != "ftyp") {
        throw MP4ParseException();
    }
}

void FileReader::Read(void* buffer, std::uint64_t byteCount) {
    auto* target = static_cast<char*>(buffer);
    while (byteCount > 0) {
        const auto wanted = static_cast<DWORD>(
            std::min<std::uint64_t>(byteCount, std::numeric_limits<DWORD>::max()));
        DWORD got = 0;
        if (ReadFile(m_file.get(), target, wanted, &got, nullptr) == FALSE || got != wanted) {
            throw MP4ParseException();
        }
        target += got;
        byteCount -= got;
    }
}

std::uint64_t FileReader::GetSize() {
    const std::optional<std::uint64_t> before = Move(0, FILE_CURRENT);
    Move(0, FILE_END);
    const std::optional<std::uint64_t> size = Move(0, FILE_CURRENT);
    if (before.has_value()) {
        Move(static_cast<std::int64_t>(*before), FILE_BEGIN);
    }
    return size.value_or(0);
}

void FileReader::Seek(std::uint64_t position) {
    // The system's positions are signed: one beyond 63 bits comes out as negative and is refused.
    if (!Move(static_cast<std::int64_t>(position), FILE_BEGIN).has_value()) {
        throw MP4ParseException();
    }
}

std::uint64_t FileReader::GetPosition() {
    const std::optional<std::uint64_t> position = Move(0, FILE_CURRENT);
    if (!position.has_value()) {
        throw MP4ParseException();
    }
    return *position;
}

std::optional<std::uint64_t> FileReader::Move(std::int64_t distance, std::uint32_t method) const {
    LARGE_INTEGER by;
    by.QuadPart = distance;
    LARGE_INTEGER position;
    if (SetFilePointerEx(m_file.get(), by, &position, method) == FALSE) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(position.QuadPart);
}
