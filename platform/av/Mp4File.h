// An MP4 or QuickTime file, open for the tables in its headers and for the bytes of single samples.
//
//     if (const auto file = av::Mp4File::Open(path))
//         for (const av::Mp4Track& track : file->Tracks()) ...
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
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
    std::uint32_t width = 0; // pixels, by its first sample description; 0 without pictures
    std::uint32_t height = 0;
    unsigned int stream = 0; // its place in the file, covers counted
};

struct Mp4Sample {
    std::int64_t time = 0;  // when it is decoded, in the track's units, the first one about 0
    bool isKey = false;     // it can be decoded without another
    std::int64_t place = 0; // of its bytes in the file
    std::uint32_t size = 0; // bytes
};

// Edit lists play no part: times and samples are the tracks' own. The first question for durations
// or samples goes through the fragments, if the file has any.
//
// Thread-safety: none.
class Mp4File {
public:
    // Null where `path` (UTF-8, a regular file) is none.
    static std::unique_ptr<Mp4File> Open(const std::string& path);

    // The file itself.
    const std::string& Path() const { return m_path; }

    // Units a second of the whole file, by its movie header; 0 where it has none.
    std::uint32_t MovieUnitsPerSecond() const;

    // In the order of the file. A cover picture is no track, nor is what has no number.
    const std::vector<Mp4Track>& Tracks() const { return m_tracks; }

    // Of one of Tracks(): its units a second, and its duration in them, never negative.
    std::uint32_t UnitsPerSecond(const Mp4Track& track) const;
    std::int64_t Duration(const Mp4Track& track);

    // Its samples, numbered from 0 in the order in which they are decoded.
    std::uint32_t SampleCount(const Mp4Track& track);

    // Nothing where there is no such sample.
    std::optional<Mp4Sample> Sample(const Mp4Track& track, std::uint32_t number);

    // The number of the sample that is the last to begin at or before `time`, in the track's units;
    // the first one where none does. Nothing where the track has none, or has ended at `time`.
    std::optional<std::uint32_t> SampleAt(const Mp4Track& track, std::int64_t time);

    // Whether the file is long enough to hold the sample's bytes.
    bool Holds(const Mp4Sample& sample) const;

    // Writes the sample's `size` bytes to `bytes`; false where the file does not give them all.
    bool Read(const Mp4Sample& sample, std::uint8_t* bytes);

private:
    Mp4File(std::string path, FormatContextPtr context);

    void AddBoxes(const std::string& path);
    const AVStream& CompleteStreamOf(const Mp4Track& track);

    const std::string m_path;
    FormatContextPtr m_context;
    bool m_fragmentsVisited = false;
    std::vector<Mp4Track> m_tracks;
};

} // namespace av
