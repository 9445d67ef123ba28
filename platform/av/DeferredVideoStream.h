// A stream that announces its pictures and decodes only those that are looked at.
//
// Who searches a picture by stepping then pays for reading packets alone, and the picture found is
// decoded by the shortest way there is: unreferenced ones before it are left out, and a key frame
// in between is used.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/av/PictureTimeline.h"
#include "platform/av/VideoStream.h"

namespace av {

// A stream and the pictures that it has announced, which decode through it also after its reader
// is gone.
class SharedVideoStream;

// Thread-safety: none; one thread at a time. The pictures that it gives are safe from any thread.
class DeferredVideoStream final : public VideoStream {
public:
    // As VideoStream::Open. Of a file whose packets do not tell when its pictures are shown, what
    // that gives.
    static std::unique_ptr<VideoStream> Open(const std::string& path, const VideoOptions& options);

    // VideoStream
    const VideoFacts& Facts() const override { return m_facts; }

    const FileFacts& File() const override { return m_file; }

    bool Seek(std::int64_t time) override;
    ReadResult Read(PicturePtr& picture) override;

    bool AtEnd() const override { return m_timeline->AtEnd(); }

    // Its own packets and those that decoding has read.
    const WorkCounters& Counters() const override;

private:
    DeferredVideoStream(std::shared_ptr<SharedVideoStream> stream,
                        std::unique_ptr<PictureTimeline> timeline, VideoFacts facts,
                        const FileFacts& file);

    const std::shared_ptr<SharedVideoStream> m_stream;
    const std::unique_ptr<PictureTimeline> m_timeline;
    const VideoFacts m_facts;
    const FileFacts& m_file; // the shared stream's
    mutable WorkCounters m_counters;
};

} // namespace av
