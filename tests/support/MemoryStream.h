#pragma once

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "zanthe/containers/avi20/IStream.h"

// Bytes in memory as the reader of AVI files wants them. It counts what it is asked for.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, and ended as what it is
class MemoryStream final : public AVI20::Read::IStream {
public:
    explicit MemoryStream(std::string bytes)
        : m_bytes(std::move(bytes)) {}

    // AVI20::Read::IStream
    bool IsNull() const override { return false; }

    bool Read(void* buffer, std::uint32_t byteCount) override {
        ++reads;
        const std::uint64_t left = m_bytes.size() > m_position ? m_bytes.size() - m_position : 0;
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(byteCount, left));
        if (count > 0) {
            std::memcpy(buffer, m_bytes.data() + m_position, count);
        }
        m_position += count;
        bytesRead += count;
        return count == byteCount;
    }

    std::uint64_t Position() const override { return m_position; }

    bool Seek(std::uint64_t position) override {
        if (position >> 63 != 0) {
            return false;
        }
        m_position = position;
        return true;
    }

    bool SeekToEnd() override { return Seek(Size()); }

    std::uint64_t Size() override { return m_bytes.size(); }

    bool IsOpen() const override { return true; }

    bool Rewind() override { return Seek(0); }

    std::uint64_t reads = 0;
    std::uint64_t bytesRead = 0;

private:
    std::string m_bytes;
    std::uint64_t m_position = 0;
};
