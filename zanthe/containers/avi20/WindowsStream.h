// The bytes of a stream of the platform.
#pragma once

#include "platform/com/Stream.h"
#include "zanthe/containers/avi20/IStream.h"

namespace AVI20::Read {

// Knows its position itself, so nobody else may move that of the stream underneath.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, and ended as what it is
class WindowsStream final : public IStream {
public:
    // `stream` is borrowed for the life of this object, and is at its start; it may be null.
    explicit WindowsStream(::IStream* stream);

    // IStream
    bool IsNull() const override;
    bool Read(void* buffer, std::uint32_t byteCount) override;
    std::uint64_t Position() const override;
    bool Seek(std::uint64_t position) override;
    bool SeekToEnd() override;
    // Asked of the stream once. 0 where it does not know.
    std::uint64_t Size() override;
    bool IsOpen() const override;
    bool Rewind() override;

private:
    ::IStream* m_stream;
    std::int64_t m_size = -1; // -1: not asked yet
    std::uint64_t m_position = 0;
};

} // namespace AVI20::Read
