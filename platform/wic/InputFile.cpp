#include "platform/wic/InputFile.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace wic {

namespace {

constexpr std::size_t LargestRead = std::size_t{1} << 30; // a DWORD holds it

std::int64_t SizeOf(HANDLE file) {
    LARGE_INTEGER end{};
    return SetFilePointerEx(file, LARGE_INTEGER{}, &end, FILE_END) != FALSE ? end.QuadPart : 0;
}

} // namespace

std::shared_ptr<InputFile> InputFile::Open(LPCWSTR path) {
    win32::OwnedHandle file = win32::OpenToRead(path);
    return file != nullptr ? std::make_shared<InputFile>(std::move(file)) : nullptr;
}

InputFile::InputFile(win32::OwnedHandle file)
    : m_file(std::move(file))
    , m_size(SizeOf(m_file.get())) {}

std::size_t InputFile::ReadAt(std::int64_t offset, void* buffer, std::size_t count) const {
    LARGE_INTEGER place{};
    place.QuadPart = offset;
    DWORD got = 0;
    if (SetFilePointerEx(m_file.get(), place, nullptr, FILE_BEGIN) == FALSE ||
        ReadFile(m_file.get(), buffer, static_cast<DWORD>(std::min(count, LargestRead)), &got,
                 nullptr) == FALSE) {
        return 0;
    }
    return got;
}

BufferedReader::BufferedReader(std::shared_ptr<const InputFile> file)
    : m_file(std::move(file))
    , m_buffer(std::make_unique_for_overwrite<std::uint8_t[]>(BufferBytes)) {}

std::int64_t BufferedReader::Position() const {
    return m_start + static_cast<std::int64_t>(m_next);
}

void BufferedReader::MoveTo(std::int64_t offset) {
    const std::int64_t end = m_start + static_cast<std::int64_t>(m_length);
    if (offset >= m_start && offset <= end) {
        m_next = static_cast<std::size_t>(offset - m_start);
        return;
    }
    m_start = offset;
    m_length = 0;
    m_next = 0;
}

std::size_t BufferedReader::Read(void* buffer, std::size_t count) {
    auto* to = static_cast<std::uint8_t*>(buffer);
    std::size_t done = 0;
    while (done < count && (m_next < m_length || Refill())) {
        const std::size_t step = std::min(count - done, m_length - m_next);
        std::memcpy(to + done, m_buffer.get() + m_next, step);
        m_next += step;
        done += step;
    }
    return done;
}

bool BufferedReader::Refill() {
    m_start = Position();
    m_next = 0;
    m_length = m_file->ReadAt(m_start, m_buffer.get(), BufferBytes);
    return m_length > 0;
}

} // namespace wic
