#pragma once

#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "zanthe/analysis/IStreamReader.h"
#include "zanthe/analysis/MP4ParseException.h"

// A file that lies in memory, whatever it starts with. It counts what the walker asks for.
class MemoryStreamReader final : public IStreamReader {
public:
    struct Work {
        std::uint64_t reads = 0;
        std::uint64_t bytesRead = 0;
        std::uint64_t seeks = 0;
    };

    // `work`, when given, outlives the reader.
    explicit MemoryStreamReader(std::string bytes, Work* work = nullptr)
        : m_owned(std::move(bytes))
        , m_bytes(m_owned)
        , m_work(work != nullptr ? work : &m_ownWork) {}

    // Over bytes that outlive the reader.
    explicit MemoryStreamReader(std::string_view bytes)
        : m_bytes(bytes) {}

    void Open(const std::wstring&) override { m_position = 0; }

    void Read(void* buffer, std::uint64_t byteCount) override {
        ++m_work->reads;
        if (m_position > m_bytes.size() || byteCount > m_bytes.size() - m_position) {
            throw MP4ParseException();
        }
        std::memcpy(buffer, m_bytes.data() + m_position, byteCount);
        m_position += byteCount;
        m_work->bytesRead += byteCount;
    }

    std::uint64_t GetSize() override { return m_bytes.size(); }

    void Seek(std::uint64_t position) override {
        ++m_work->seeks;
        if (position >> 63 != 0) {
            throw MP4ParseException();
        }
        m_position = position;
    }

    std::uint64_t GetPosition() override { return m_position; }

private:
    std::string m_owned;
    std::string_view m_bytes; // m_owned, or somebody else's
    std::uint64_t m_position = 0;
    Work m_ownWork;
    Work* m_work = &m_ownWork;
};
