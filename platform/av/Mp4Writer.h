// A new MP4 file with a copy of another one's track in it.
//
//     auto writer = Mp4Writer::Create(path);
//     writer != nullptr && writer->CopyTrack(source, track.stream);
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/av/Handles.h"

namespace av {

// Thread-safety: none.
class Mp4Writer {
public:
    // The file at `path` (UTF-8), empty from now on. Null where it cannot be written.
    static std::unique_ptr<Mp4Writer> Create(const std::string& path);

    // Units a second of the file's header, to be set before the copy; 1 and more.
    void SetUnitsPerSecond(std::uint32_t units) { m_unitsPerSecond = units; }

    // Puts the samples of the file's stream at that place there as they are, so that they are shown
    // or heard when they were, and completes the file. False when one of the two files fails, for a
    // codec that MP4 has no place for, and for a second copy.
    bool CopyTrack(const std::string& source, unsigned int stream);

private:
    explicit Mp4Writer(IoContextPtr file)
        : m_file(std::move(file)) {}

    bool Begin(const AVStream& source);
    bool Write(AVPacket& packet, AVRational timeBase);
    bool CopyPackets(AVFormatContext& source, unsigned int stream);

    IoContextPtr m_file;
    OutputContextPtr m_context; // ends before the file that it writes to
    std::uint32_t m_unitsPerSecond = 1000;
};

} // namespace av
