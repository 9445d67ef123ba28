// Random access by time over a source reader, which by itself goes forward only.
//
//     WinH264FastSampleFinder finder(reader, firstSample, duration, stream, std::move(decider),
//     {}); com::ComPtr<IMFSample> sample =
//         com::ComPtr<IMFSample>::Attach(finder.findSampleAtTime(MediaTime(5, 2)));
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>

#include "platform/com/ComPtr.h"
#include "zanthe/core/Export.h"
#include "zanthe/core/MediaTime.h"
#include "zanthe/h264/ISeekOrStepThroughDecider.h"
#include "zanthe/h264/ReadSampleOp.h"

struct IMFSample;
struct IMFSourceReader;

namespace Zanthe {

// It holds the last two samples read. A time that one of them covers costs nothing, the next
// picture costs one read, and whether a time further on is sought or stepped to is the decider's to
// say. Times are in units of 100 ns on the finder's timeline, on which the first sample is at 0;
// samples leave with their time on it. A sample with time s and duration d covers [s - 1, s + d):
// the one unit absorbs what is cut off where a time is made of a fraction.
//
// Thread-safety: none; the callback runs on the caller's thread, within the constructor and
// findSampleAtTime.
class ZANTHE_API WinH264FastSampleFinder {
public:
    // `reader` is borrowed and outlives the finder. `firstSample` is the reader's first of the
    // stream; the caller's reference on it becomes the finder's, also when this throws.
    // streamDuration is the end of the stream; -1: unknown, and no time is found. `callback`, which
    // may be empty, is told of every sample read, the first included, when its time is set.
    //
    // Throws std::runtime_error: "WinH264FastSampleFinder: Received invalid firstSample" for null,
    // "WinH264FastSampleFinder: Invalid stream index" where the reader has no such stream; and what
    // the callback throws.
    WinH264FastSampleFinder(IMFSourceReader* reader, IMFSample* firstSample,
                            std::int64_t streamDuration, int streamIndex,
                            std::unique_ptr<ISeekOrStepThroughDecider> decider,
                            std::function<void(IMFSample*)> callback);
    WinH264FastSampleFinder(const WinH264FastSampleFinder&) = delete;
    WinH264FastSampleFinder& operator=(const WinH264FastSampleFinder&) = delete;
    ~WinH264FastSampleFinder();

    // The sample that covers `time` (seconds; cut to units of 100 ns, and 0 where it is negative),
    // with a reference for the caller. Null beyond the stream's end, where the position cannot be
    // set and where the search goes round in circles. Behind the last sample, and wherever else 500
    // steps do not reach the time, the sample reached last, or null when the last read gave none.
    //
    // Throws what the decider throws, and without one std::runtime_error with
    // "WinH264FastSampleFinder: No Seek-or-Step-Through Decider!"; the finder serves on.
    IMFSample* findSampleAtTime(MediaTime time);

    // The sample read last, without a reference for the caller; null once it has been answered, and
    // behind a read that gave none.
    IMFSample* currentSample() const { return m_currentSample.Get(); }

    // What the decider says. Throws as above.
    bool NeedToSeekBetweenTimes(std::int64_t from, std::int64_t to) const;

    // -1: unknown.
    std::int64_t StreamDuration() const { return m_streamDuration; }

    // The last 500 things done, oldest first.
    const std::deque<ReadSampleOp>& readSampleOps() const { return m_operations; }

    // Always empty: no read fails but for the search to go on.
    const std::deque<std::int64_t>& readSampleFailures() const { return m_readFailures; }

    // How many steps each of the last 500 searches took that were not given up, oldest first.
    const std::deque<int>& attempts() const { return m_attempts; }

    // Where the last 10 seeks went, and the times of the last 500 samples read, oldest first.
    const std::deque<std::int64_t>& seekTargets() const { return m_seekTargets; }

    const std::deque<std::int64_t>& sampleTimes() const { return m_sampleTimes; }

    // Of the stream's native type, pictures a second: 30/1 where there is no type, 0/1 where it
    // does not tell. No search goes by it.
    std::uint32_t frameRateNumerator() const { return m_frameRateNumerator; }

    std::uint32_t frameRateDenominator() const { return m_frameRateDenominator; }

private:
    void OnSampleRead(IMFSample* sample);
    void ReadFrameRate();
    com::ComPtr<IMFSample> TakeCurrentSample();
    com::ComPtr<IMFSample> TakeHeldSample(std::int64_t time);
    bool StepTowards(std::int64_t time);
    bool SeekBackwardTo(std::int64_t time);
    bool MoveForwardTo(std::int64_t time);
    bool SeekToTime(std::int64_t time);
    void ReadSample();
    void Log(ReadSampleOp operation);

    IMFSourceReader* m_reader;
    int m_streamIndex;
    com::ComPtr<IMFSample> m_currentSample;  // read last
    com::ComPtr<IMFSample> m_previousSample; // the one before, or the one answered last
    std::unique_ptr<ISeekOrStepThroughDecider> m_decider;
    std::function<void(IMFSample*)> m_callback;
    std::int64_t m_firstSampleTime = 0; // on the reader's timeline
    std::int64_t m_currentTime = 0;     // of the sample read last; 0 behind a seek
    std::uint32_t m_frameRateNumerator = 0;
    std::uint32_t m_frameRateDenominator = 1;
    std::deque<ReadSampleOp> m_operations;
    std::deque<std::int64_t> m_readFailures;
    std::deque<int> m_attempts;
    std::deque<std::int64_t> m_seekTargets;
    std::deque<std::int64_t> m_sampleTimes;
    std::int64_t m_streamDuration;
};

} // namespace Zanthe
