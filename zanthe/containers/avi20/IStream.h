// Where the reader of AVI files takes its bytes from.
#pragma once

#include <cstdint>

namespace AVI20::Read {

// Not deleted through this interface: whoever made the stream ends it.
//
// Thread-safety: none; there is one position.
class IStream {
public:
    IStream() = default;
    IStream(const IStream&) = delete;
    IStream& operator=(const IStream&) = delete;

    // Whether there is nothing to read from; every read fails then.
    virtual bool IsNull() const = 0;

    // True where exactly `byteCount` bytes came. The position moves by what came either way.
    virtual bool Read(void* buffer, std::uint32_t byteCount) = 0;

    virtual std::uint64_t Position() const = 0;

    // To a place counted from the start, which may lie past the end. On failure nothing moves.
    virtual bool Seek(std::uint64_t position) = 0;

    virtual bool SeekToEnd() = 0;

    // In bytes.
    virtual std::uint64_t Size() = 0;

    virtual bool IsOpen() const = 0;

    virtual bool Rewind() = 0;

protected:
    ~IStream() = default;
};

} // namespace AVI20::Read
