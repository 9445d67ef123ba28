// The one implementation of VideoStream.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

#include "platform/av/Demuxer.h"
#include "platform/av/FileFacts.h"
#include "platform/av/Landing.h"
#include "platform/av/PacketFeed.h"
#include "platform/av/PictureCache.h"
#include "platform/av/PictureRun.h"
#include "platform/av/VideoDecoder.h"
#include "platform/av/VideoStream.h"

namespace av {

// A read asks, in this order: the picture given last, the cache, the run at hand if reading on
// leads to the time, and a new landing.
class FileVideoStream final : public VideoStream {
public:
    FileVideoStream(std::unique_ptr<Demuxer> demuxer, std::unique_ptr<VideoDecoder> decoder);
    ~FileVideoStream() override;
    FileVideoStream(const FileVideoStream&) = delete;
    FileVideoStream& operator=(const FileVideoStream&) = delete;

    // VideoStream
    const VideoFacts& Facts() const override { return m_facts; }

    const FileFacts& File() const override { return m_file; }

    bool Seek(std::int64_t time) override;
    ReadResult Read(PicturePtr& picture) override;

    bool AtEnd() const override { return m_end && m_next >= *m_end; }

    const WorkCounters& Counters() const override;

private:
    PicturePtr Find(std::int64_t time);
    PicturePtr Decode(std::int64_t time);
    PicturePtr ReadOn(std::int64_t time, std::int64_t keepFrom);
    bool LeadsTo(std::int64_t time);
    bool Land(std::int64_t time, std::int64_t keepFrom, bool decodeAll);
    bool Begin(Landing::Place place, std::int64_t keepFrom, bool decodeAll);
    void Keep(const PicturePtr& picture, bool forGoingBack);
    bool StepsBack(std::int64_t time) const;
    std::int64_t WindowBefore(std::int64_t time) const;

    const std::unique_ptr<Demuxer> m_demuxer;
    const std::unique_ptr<VideoDecoder> m_decoder;
    PacketFeed m_feed;
    PictureRun m_run;
    Landing m_landing;
    const VideoFacts m_facts;
    const FileFacts m_file;
    const PictureCache::Owner m_owner;

    std::int64_t m_next;     // the time that the next Read is for
    PicturePtr m_last;       // what Read gave last
    bool m_wentBack = false; // what Read gave last lies before what it gave ahead of that
    bool m_gaveOut = false;
    std::deque<std::int64_t> m_trail;       // starts of the pictures kept while reading on
    std::optional<std::int64_t> m_landedAt; // start of the run's first picture
    std::optional<std::int64_t> m_begin;    // of the stream's first picture, once it is known
    std::optional<std::int64_t> m_end;      // of the stream's last picture, once it is known
    mutable WorkCounters m_counters;
};

} // namespace av
