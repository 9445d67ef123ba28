// The boxes of an MP4 or QuickTime file, one at a time, for what libavformat does not tell of them.
//
//     if (const auto boxes = av::Mp4Boxes::Open(path))
//         boxes->ForEach({0, boxes->Size()}, [&](const av::Mp4Box& box) { ... });
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/win32/OwnedHandle.h"
#include "platform/win32/ReadAhead.h"

namespace av {

// Positions in the file, the second behind the last byte.
struct Mp4Range {
    std::uint64_t start = 0;
    std::uint64_t end = 0;
};

struct Mp4Box {
    std::string type;   // four characters
    Mp4Range payload{}; // ends no later than what the box stands in
};

// Thread-safety: none.
class Mp4Boxes {
public:
    // Null where there is no regular file at `path` (UTF-8).
    static std::unique_ptr<Mp4Boxes> Open(const std::string& path);

    std::uint64_t Size() const { return m_size; }

    // How many boxes ForEach has come to so far.
    std::uint64_t Count() const { return m_count; }

    // Calls for each box that stands in `range`, in order, until one answers false. Ends quietly
    // where what follows cannot be a box.
    void ForEach(const Mp4Range& range, const std::function<bool(const Mp4Box&)>& call);

    // The big-endian number of byteCount bytes, at most 8; nothing where the file has none there.
    std::optional<std::uint64_t> Number(std::uint64_t position, unsigned int byteCount);

    // Four characters, likewise.
    std::optional<std::string> FourCharacters(std::uint64_t position);

private:
    explicit Mp4Boxes(win32::OwnedHandle file);

    std::optional<Mp4Box> BoxAt(const Mp4Range& range);

    win32::OwnedHandle m_file;
    std::uint64_t m_size = 0;
    std::uint64_t m_count = 0;
    win32::ReadAhead m_ahead;
};

} // namespace av
