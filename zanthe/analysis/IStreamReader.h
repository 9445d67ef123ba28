// Where the MP4 walker takes its bytes from. FileReader is the library's own; tests and fuzzing
// hand in bytes that lie in memory.
#pragma once

#include <cstdint>
#include <string>

// Positions and sizes count bytes from the start of the file.
//
// Thread-safety: none; one reader serves one thread at a time.
class IStreamReader {
public:
    IStreamReader() = default;
    IStreamReader(const IStreamReader&) = delete;
    IStreamReader& operator=(const IStreamReader&) = delete;
    virtual ~IStreamReader() = default;

    // Makes the file at `path` the one that is read, positioned at its start. Throws
    // MP4ParseException when it cannot be opened or is not fit to be walked.
    virtual void Open(const std::wstring& path) = 0;

    // Fills `buffer` with exactly `byteCount` bytes from the position on, which moves behind them.
    // Throws MP4ParseException when that many cannot be read.
    virtual void Read(void* buffer, std::uint64_t byteCount) = 0;

    // The size of the file; the position stays. Does not throw: without an answer from the system
    // it is the position that the reader then reports.
    virtual std::uint64_t GetSize() = 0;

    // Moves to `position`. Past the end is no failure here: the next Read throws. Throws
    // MP4ParseException when the system cannot move there.
    virtual void Seek(std::uint64_t position) = 0;

    // The position. Throws MP4ParseException when the system does not tell.
    virtual std::uint64_t GetPosition() = 0;
};
