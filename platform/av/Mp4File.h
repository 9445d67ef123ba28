// An MP4 or QuickTime file, open for the tables in its headers; no sample is read.
//
//     if (const auto file = av::Mp4File::Open(path))
//         for (const av::Mp4Track& track : file->Tracks()) ...
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/av/Handles.h"
#include "platform/av/StreamFacts.h"

namespace av {

struct Mp4Track {
    std::uint32_t id = 0; // the number that the file gives it, never 0
    TrackKind kind = TrackKind::Other;
    std::string codec;     // the four characters of its first sample description; empty if none
    std::string handler{}; // "soun", "vide", ...; empty if none
    std::vector<std::string> descriptions{}; // the four characters of all sample descriptions
};

// Edit lists play no part: times and samples are the tracks' own.
//
// Thread-safety: a file never changes; safe from any thread.
class Mp4File {
public:
    // Null where `path` (UTF-8, a regular file) is none.
    static std::unique_ptr<Mp4File> Open(const std::string& path);

    // In the order of the file. A cover picture is no track, nor is what has no number.
    const std::vector<Mp4Track>& Tracks() const { return m_tracks; }

private:
    explicit Mp4File(FormatContextPtr context);

    void AddBoxes(const std::string& path);

    FormatContextPtr m_context;
    std::vector<Mp4Track> m_tracks;
};

} // namespace av
