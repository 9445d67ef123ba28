#include "zanthe/analysis/FileReader.h"

#include <limits>
#include <string_view>
#include <utility>

#include "platform/win32/File.h"
#include "zanthe/analysis/MP4ParseException.h"

void FileReader::Open(const std::wstring& path) {
    auto file = MayOpenPlainly() ? win32::OpenToRead(path.c_str()) : nullptr;
    if (file == nullptr) {
        throw MP4ParseException();
    }
    m_file = std::move(file);
    m_position = 0;
    m_ahead = {};
    RequireFileType();
    Seek(0);
}

// A transaction needs CreateFileTransactedW, a call that kernel32.dll of a few systems exports and
// this one does not, so a file inside a transaction is out of reach.
bool FileReader::MayOpenPlainly() const {
    return m_context == nullptr || (m_context->transaction == nullptr && m_context->openPlainly);
}

void FileReader::RequireFileType() {
    char start[8];
    Read(start, sizeof start);
    if (std::string_view(start + 4, 4) != "ftyp") {
        throw MP4ParseException();
    }
}

void FileReader::Read(void* buffer, std::uint64_t byteCount) {
    if (!m_ahead.Read(m_file.get(), m_position, buffer, byteCount)) {
        throw MP4ParseException();
    }
    m_position += byteCount;
}

std::uint64_t FileReader::GetSize() {
    LARGE_INTEGER none;
    none.QuadPart = 0;
    LARGE_INTEGER end;
    const bool known = SetFilePointerEx(m_file.get(), none, &end, FILE_END) != FALSE;
    return known ? static_cast<std::uint64_t>(end.QuadPart) : m_position;
}

void FileReader::Seek(std::uint64_t position) {
    RequireOpen();
    // The system's positions are signed: one beyond 63 bits is none.
    if (position > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        throw MP4ParseException();
    }
    m_position = position;
}

std::uint64_t FileReader::GetPosition() {
    RequireOpen();
    return m_position;
}

void FileReader::RequireOpen() const {
    if (m_file == nullptr) {
        throw MP4ParseException();
    }
}
