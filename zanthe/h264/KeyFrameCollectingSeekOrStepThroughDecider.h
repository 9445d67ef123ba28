// Decides by a table of the file's key frames, which it collects in the background.
//
//     auto decider = std::make_unique<KeyFrameCollectingSeekOrStepThroughDecider>(
//         path, 0, firstSampleTime, MFVideoFormat_H264);
//     if (decider->NeedToSeekBetweenTimes(now, wanted)) ...
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/com/Guid.h"
#include "platform/win32/Handle.h"
#include "zanthe/h264/IH264KeyframeCollector.h"
#include "zanthe/h264/ISeekOrStepThroughDecider.h"

namespace Zanthe {

// States: collecting, then ready, once and for good. Questions wait for ready, but for those that
// need no table. What one decider has collected serves every later one of the same path in the
// process, which is then ready at once and starts no thread; a path is never looked at again, also
// when its collection failed, unless there was no memory to keep what came of it.
//
// Thread-safety: NeedToSeekBetweenTimes is safe from any thread.
class ZANTHE_API KeyFrameCollectingSeekOrStepThroughDecider : public ISeekOrStepThroughDecider {
public:
    // Returns at once. `path` is UTF-8; `subtype` is the stream's native type, and elementary
    // streams (MFVideoFormat_H264_ES, MFVideoFormat_HEVC_ES), which have no tables, get an empty
    // one without a look. streamIndex is kept, and plays no part.
    KeyFrameCollectingSeekOrStepThroughDecider(const std::string& path, int streamIndex,
                                               std::int64_t firstSampleTime, GUID subtype);

    // The same with another collector than H264KeyframeCollector_MP4V2. It runs on a thread of its
    // own; what it throws counts as a failure. REQUIRES: a collector.
    KeyFrameCollectingSeekOrStepThroughDecider(const std::string& path, int streamIndex,
                                               std::int64_t firstSampleTime, GUID subtype,
                                               std::unique_ptr<IH264KeyframeCollector> collector);

    // Waits for the collection, without limit: it is not cancelled.
    ~KeyFrameCollectingSeekOrStepThroughDecider() override;

    // Whether the collector found key frames; false while it runs, and where another decider had
    // collected them. Safe from any thread.
    bool CollectionSucceeded() const { return m_collectionSucceeded; }

    // ISeekOrStepThroughDecider
    // In this order: a time that is not later is sought, also the same one; a hop shorter than the
    // mean distance of the key frames is stepped, wherever they lie; and so is one that ends in
    // the interval of `from` or in the next one.
    //
    // Throws std::runtime_error with "Couldn't find key frame times" when that would need a table
    // and there is none, and when a time lies beyond the stream's end.
    bool NeedToSeekBetweenTimes(std::int64_t from, std::int64_t to) const override;

private:
    static unsigned int CollectOnThread(void* decider);

    void StartCollection();
    void Collect();
    void Share();

    // Whether there is a key frame for the time; `result` is the last one at or before it, or the
    // first of all.
    bool FindKeyFrameAtOrBefore(std::int64_t time, std::int64_t& result) const;
    bool AreConsecutiveKeyFrames(std::int64_t a, std::int64_t b) const;
    std::size_t IndexOf(std::int64_t time) const;
    void WaitUntilReady() const;

    std::string m_path;
    [[maybe_unused]] int m_streamIndex;
    std::int64_t m_firstSampleTime;
    GUID m_subtype;

    // Written by the collecting thread before it signals m_ready, and read behind a wait for that.
    std::vector<std::int64_t> m_keyFrameTimes;
    std::int64_t m_duration = 0;

    // Read without a wait: 0 until it is known, which is a right answer too.
    std::atomic<std::int64_t> m_averageInterval{0};

    HANDLE m_thread = nullptr; // null where none was started
    std::atomic<bool> m_collectionSucceeded{false};
    HANDLE m_ready = nullptr; // manual-reset event
    std::unique_ptr<IH264KeyframeCollector> m_collector;
};

} // namespace Zanthe
