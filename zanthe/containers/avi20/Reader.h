// Reads AVI files, OpenDML ones too.
//
//     WindowsStream stream(platformStream);
//     Reader reader(&stream);
//     for (std::size_t i = 0; i < reader.GetStreamCount(); ++i)
//         if (reader.GetStreamInfo(i).header.fccType == FourCc("vids"))
//             ... reader.GetMediaStreamReader(i).GetFrameCount() ...
#pragma once

#include <cstddef>
#include <memory>

#include "zanthe/containers/avi20/IStream.h"
#include "zanthe/containers/avi20/MediaStreamReader.h"

namespace AVI20::Read {

class ReaderImpl;

// Thread-safety: none; one thread at a time, handles included.
class Reader {
public:
    // Reads the file's headers. `stream` is borrowed for the life of this object. Throws what the
    // walk throws: see BasicInfoParser. A file that is no AVI has no streams.
    explicit Reader(IStream* stream);
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader();

    std::size_t GetStreamCount() const;

    // All zero where there is no such stream.
    StreamInfo GetStreamInfo(std::size_t index) const;

    // The stream's index is loaded on the first request, once. Invalid where `index` is above the
    // count of streams. Throws std::exception where the stream has no index that can be read, and
    // where `index` is just the count.
    MediaStreamReader GetMediaStreamReader(std::size_t index);

private:
    std::unique_ptr<ReaderImpl> m_impl;
};

} // namespace AVI20::Read
