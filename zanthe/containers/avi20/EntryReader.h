// Entries of one size that stand one behind the other, read many at a time.
//
//     EntryReader<AVIOLDINDEX> entries(stream, endPosition);
//     AVIOLDINDEX entry{};
//     while (entries.Next(entry)) ...
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "zanthe/containers/avi20/IStream.h"

namespace AVI20::Read {

// Entry is a plain structure as the file holds it.
template <typename Entry>
class EntryReader {
public:
    // The entries that begin at the stream's position or behind it, before `endPosition` and
    // before the end of the stream. The stream is borrowed, and its position is this object's.
    EntryReader(IStream& stream, std::uint64_t endPosition)
        : m_stream(stream)
        , m_left(EntriesBefore(stream, std::min(endPosition, stream.Size()))) {}

    // How many there are to come, as far as the stream can be read.
    std::uint64_t Left() const { return m_left; }

    // False where there are no more. An entry that the stream ends within keeps for the rest what
    // `entry` held before.
    bool Next(Entry& entry) {
        if (m_left == 0 || (m_used == m_bytes.size() && !Fill())) {
            return false;
        }
        const std::size_t count = std::min(sizeof entry, m_bytes.size() - m_used);
        std::memcpy(&entry, m_bytes.data() + m_used, count);
        m_used += count;
        --m_left;
        return true;
    }

private:
    static constexpr std::uint64_t EntriesAtOnce = 4096;

    // Rounded up: an entry may reach over the end.
    static std::uint64_t EntriesBefore(const IStream& stream, std::uint64_t end) {
        const std::uint64_t position = stream.Position();
        return position < end ? (end - position + sizeof(Entry) - 1) / sizeof(Entry) : 0;
    }

    bool Fill() {
        m_bytes.resize(std::min(m_left, EntriesAtOnce) * sizeof(Entry));
        m_used = 0;
        const std::uint64_t before = m_stream.Position();
        static_cast<void>(
            m_stream.Read(m_bytes.data(), static_cast<std::uint32_t>(m_bytes.size())));
        m_bytes.resize(m_stream.Position() - before);
        return !m_bytes.empty();
    }

    IStream& m_stream;
    std::uint64_t m_left;
    std::vector<unsigned char> m_bytes;
    std::size_t m_used = 0;
};

} // namespace AVI20::Read
