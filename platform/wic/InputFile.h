// A file that a decoder reads, open as long as anything that came from it lives.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/win32/OwnedHandle.h"

namespace wic {

// Thread-safety: none; the file has one position.
class InputFile {
public:
    // Null where there is no regular file at `path` or it may not be read.
    static std::shared_ptr<InputFile> Open(LPCWSTR path);

    explicit InputFile(win32::OwnedHandle file);
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // Bytes; what the file had when it was opened.
    std::int64_t Size() const { return m_size; }

    // Up to `count` bytes from `offset` on, and how many there were: fewer only at the end of the
    // file, and where the system cannot read.
    std::size_t ReadAt(std::int64_t offset, void* buffer, std::size_t count) const;

private:
    win32::OwnedHandle m_file;
    std::int64_t m_size;
};

// The file read in order, in small steps that mostly touch memory alone.
//
// Thread-safety: none.
class BufferedReader {
public:
    explicit BufferedReader(std::shared_ptr<const InputFile> file);

    std::int64_t Position() const;
    void MoveTo(std::int64_t offset);

    // As InputFile::ReadAt, from the position on, which moves by what was read.
    std::size_t Read(void* buffer, std::size_t count);

    // False at the end of the file.
    bool ReadByte(std::uint8_t& byte) { return Read(&byte, 1) == 1; }

private:
    static constexpr std::size_t BufferBytes = 16384;

    bool Refill();

    std::shared_ptr<const InputFile> m_file;
    std::unique_ptr<std::uint8_t[]> m_buffer;
    std::int64_t m_start = 0; // of the buffer, in the file
    std::size_t m_length = 0; // bytes in the buffer
    std::size_t m_next = 0;   // first of them not read yet
};

} // namespace wic
