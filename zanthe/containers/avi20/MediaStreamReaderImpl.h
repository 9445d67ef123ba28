// One stream of an open AVI file, shared by all its MediaStreamReaders.
#pragma once

#include <cstdint>

#include "zanthe/containers/avi20/FrameIndex.h"
#include "zanthe/containers/avi20/StreamInfo.h"

namespace AVI20::Read {

class MediaStreamReaderImpl {
public:
    // Loads the stream's index; throws where it has none. `stream` is borrowed.
    MediaStreamReaderImpl(IStream* stream, StreamInfo info, std::uint64_t moviStart);
    MediaStreamReaderImpl(const MediaStreamReaderImpl&) = delete;
    MediaStreamReaderImpl& operator=(const MediaStreamReaderImpl&) = delete;
    virtual ~MediaStreamReaderImpl() = default;

    const StreamInfo& Info() const { return m_info; }

    const FrameIndex& Frames() const { return m_frames; }

    double DurationSeconds() const;

private:
    double AudioSeconds() const;

    StreamInfo m_info;
    FrameIndex m_frames;
};

} // namespace AVI20::Read
