#include "platform/av/DeferredVideoStream.h"

#include <limits>
#include <mutex>
#include <utility>

namespace av {

class SharedVideoStream final : public PictureSource {
public:
    explicit SharedVideoStream(std::unique_ptr<VideoStream> stream)
        : m_stream(std::move(stream)) {}

    // PictureSource
    PicturePtr PictureAt(std::int64_t time) override {
        const std::lock_guard lock(m_mutex);
        PicturePtr picture = Read(time);
        return picture != nullptr ? picture : LastBefore(time);
    }

    // Start of the stream's first picture; of a stream without one, the end of time.
    std::int64_t Begin() {
        const std::lock_guard lock(m_mutex);
        const PicturePtr picture = Read(std::numeric_limits<std::int64_t>::min());
        return picture != nullptr ? picture->Start() : std::numeric_limits<std::int64_t>::max();
    }

    WorkCounters Counters() const {
        const std::lock_guard lock(m_mutex);
        return m_stream->Counters();
    }

private:
    PicturePtr Read(std::int64_t time) {
        PicturePtr picture;
        const bool found = m_stream->Seek(time) && m_stream->Read(picture) == ReadResult::Picture;
        return found ? picture : nullptr;
    }

    // Packets at the end of a damaged file may give no picture; then the last one that did stays.
    PicturePtr LastBefore(std::int64_t time) {
        constexpr std::int64_t kSecond = 10'000'000;
        constexpr std::int64_t kFarthest = 1'000 * kSecond;
        for (std::int64_t back = kSecond; back <= kFarthest; back *= 4) {
            PicturePtr last = Read(time - back);
            if (last == nullptr) {
                continue;
            }
            for (PicturePtr next;
                 m_stream->Read(next) == ReadResult::Picture && next->Start() <= time;) {
                last = std::move(next);
            }
            return last;
        }
        return nullptr;
    }

    mutable std::mutex m_mutex; // guards the stream
    const std::unique_ptr<VideoStream> m_stream;
};

std::unique_ptr<VideoStream> DeferredVideoStream::Open(const std::string& path,
                                                       const VideoOptions& options) {
    auto stream = VideoStream::Open(path, options);
    auto timeline = stream != nullptr ? PictureTimeline::Open(path, options.ordinal) : nullptr;
    if (timeline == nullptr) {
        return stream;
    }
    VideoFacts facts = stream->Facts();
    const FileFacts& file = stream->File();
    auto shared = std::make_shared<SharedVideoStream>(std::move(stream));
    timeline->BeginAt(shared->Begin());
    return std::unique_ptr<VideoStream>(
        new DeferredVideoStream(std::move(shared), std::move(timeline), std::move(facts), file));
}

DeferredVideoStream::DeferredVideoStream(std::shared_ptr<SharedVideoStream> stream,
                                         std::unique_ptr<PictureTimeline> timeline,
                                         VideoFacts facts, const FileFacts& file)
    : m_stream(std::move(stream))
    , m_timeline(std::move(timeline))
    , m_facts(std::move(facts))
    , m_file(file) {}

bool DeferredVideoStream::Seek(std::int64_t time) {
    return m_timeline->Seek(time);
}

ReadResult DeferredVideoStream::Read(PicturePtr& picture) {
    PictureSpan span;
    const ReadResult result = m_timeline->Read(span);
    if (result == ReadResult::Picture) {
        picture = std::make_shared<Picture>(m_stream, span.start, span.end);
    }
    return result;
}

const WorkCounters& DeferredVideoStream::Counters() const {
    m_counters = m_stream->Counters();
    m_counters.packetsRead += m_timeline->PacketsRead();
    return m_counters;
}

} // namespace av
