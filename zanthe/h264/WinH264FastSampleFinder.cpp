#include "zanthe/h264/WinH264FastSampleFinder.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <utility>

#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/SourceReader.h"
#include "zanthe/h264/PropVariantHelper.h"
#include "zanthe/h264/ReferenceTime.h"
#include "zanthe/h264/SeekLoop.h"

namespace Zanthe {

namespace {

constexpr std::size_t LogEntries = 500;
constexpr int MostAttempts = 500;
constexpr std::int64_t UnknownDuration = -1;

// How a time lies to a sample.
enum class SampleTimeRelation { Before = 0, Within = 1, Behind = 2 };

// Drops the oldest entries so that there are never more than `limit`.
template <typename Entry>
void PushBounded(std::deque<Entry>& log, Entry entry, std::size_t limit) {
    while (log.size() >= limit) {
        log.pop_front();
    }
    log.push_back(entry);
}

std::int64_t TimeOf(IMFSample* sample) {
    LONGLONG time = 0;
    static_cast<void>(sample->GetSampleTime(&time));
    return time;
}

std::int64_t DurationOf(IMFSample* sample) {
    LONGLONG duration = 0;
    static_cast<void>(sample->GetSampleDuration(&duration));
    return duration;
}

SampleTimeRelation Relate(std::int64_t time, IMFSample* sample) {
    const std::int64_t start = TimeOf(sample);
    if (time >= SaturatingSum(start, DurationOf(sample))) {
        return SampleTimeRelation::Behind;
    }
    return time >= SaturatingDifference(start, 1) ? SampleTimeRelation::Within
                                                  : SampleTimeRelation::Before;
}

bool Covers(const com::ComPtr<IMFSample>& sample, std::int64_t time) {
    return sample && Relate(time, sample.Get()) == SampleTimeRelation::Within;
}

// Cut to whole units; 0 for a negative time, and the greatest number for what 64 bits do not hold.
// By way of double a picture's own time may come out a unit short, which Covers allows for.
std::int64_t TruncatedReferenceTime(MediaTime time) {
    constexpr double most = 0x1p63;
    const double units = static_cast<double>(time.numerator()) /
                         static_cast<double>(time.denominator()) * 10'000'000.0;
    if (units >= most) {
        return std::numeric_limits<std::int64_t>::max();
    }
    return static_cast<std::int64_t>(std::max(units, 0.0));
}

} // namespace

WinH264FastSampleFinder::WinH264FastSampleFinder(IMFSourceReader* reader, IMFSample* firstSample,
                                                 std::int64_t streamDuration, int streamIndex,
                                                 std::unique_ptr<ISeekOrStepThroughDecider> decider,
                                                 std::function<void(IMFSample*)> callback)
    : m_reader(reader)
    , m_streamIndex(streamIndex)
    , m_currentSample(com::ComPtr<IMFSample>::Attach(firstSample))
    , m_decider(std::move(decider))
    , m_callback(std::move(callback))
    , m_streamDuration(streamDuration) {
    if (!m_currentSample) {
        throw std::runtime_error("WinH264FastSampleFinder: Received invalid firstSample");
    }
    m_firstSampleTime = TimeOf(firstSample);
    OnSampleRead(firstSample);
    ReadFrameRate();
}

WinH264FastSampleFinder::~WinH264FastSampleFinder() = default;

void WinH264FastSampleFinder::ReadFrameRate() {
    com::ComPtr<IMFMediaType> type;
    const HRESULT result =
        m_reader->GetNativeMediaType(static_cast<DWORD>(m_streamIndex), 0, type.Put());
    if (result == MF_E_INVALIDSTREAMNUMBER) {
        throw std::runtime_error("WinH264FastSampleFinder: Invalid stream index");
    }
    if (FAILED(result) || !type) {
        m_frameRateNumerator = 30;
        m_frameRateDenominator = 1;
        return;
    }
    // On failure the rate stays 0/1.
    static_cast<void>(MFGetAttributeRatio(type.Get(), MF_MT_FRAME_RATE, &m_frameRateNumerator,
                                          &m_frameRateDenominator));
}

void WinH264FastSampleFinder::OnSampleRead(IMFSample* sample) {
    m_currentTime = SaturatingDifference(TimeOf(sample), m_firstSampleTime);
    static_cast<void>(sample->SetSampleTime(m_currentTime));
    PushBounded(m_sampleTimes, m_currentTime, LogEntries);
    if (m_callback) {
        m_callback(sample);
    }
}

IMFSample* WinH264FastSampleFinder::findSampleAtTime(MediaTime time) {
    const std::int64_t wanted = TruncatedReferenceTime(time);
    if (m_streamDuration == UnknownDuration || m_streamDuration < wanted) {
        return nullptr;
    }
    int attempts = 0;
    com::ComPtr<IMFSample> found = TakeHeldSample(wanted);
    while (!found && attempts < MostAttempts) {
        if (!StepTowards(wanted)) {
            return nullptr;
        }
        ++attempts;
        // The last step's sample is the answer, whether it covers the time or not.
        found = attempts < MostAttempts ? TakeHeldSample(wanted) : TakeCurrentSample();
    }
    PushBounded(m_attempts, attempts, LogEntries);
    return found.Detach();
}

// Empty where neither covers the time.
com::ComPtr<IMFSample> WinH264FastSampleFinder::TakeHeldSample(std::int64_t time) {
    if (Covers(m_currentSample, time)) {
        return TakeCurrentSample();
    }
    if (Covers(m_previousSample, time)) {
        Log(ReadSampleOp::ReturnedPreviousSample);
        return m_previousSample;
    }
    return {};
}

// The sample becomes the previous one, so that the same time asked again finds it there.
com::ComPtr<IMFSample> WinH264FastSampleFinder::TakeCurrentSample() {
    if (!m_currentSample) {
        return {};
    }
    Log(ReadSampleOp::ReturnedCurrentSample);
    m_previousSample = std::exchange(m_currentSample, {});
    return m_previousSample;
}

// False where the search is over without a sample.
bool WinH264FastSampleFinder::StepTowards(std::int64_t time) {
    const bool moved = time < m_currentTime ? SeekBackwardTo(time) : MoveForwardTo(time);
    if (!moved) {
        return false;
    }
    Log(ReadSampleOp::ReadNextSample);
    ReadSample();
    return true;
}

bool WinH264FastSampleFinder::SeekBackwardTo(std::int64_t time) {
    if (IsStuckInSeekLoop(m_seekTargets, m_operations, m_sampleTimes)) {
        return false;
    }
    Log(ReadSampleOp::SeekBackward);
    return SeekToTime(time);
}

bool WinH264FastSampleFinder::MoveForwardTo(std::int64_t time) {
    if (NeedToSeekBetweenTimes(m_currentTime, time)) {
        Log(ReadSampleOp::SeekForward);
        return SeekToTime(time);
    }
    m_previousSample = std::exchange(m_currentSample, {});
    return true;
}

bool WinH264FastSampleFinder::SeekToTime(std::int64_t time) {
    m_currentSample.Reset();
    m_previousSample.Reset();
    m_currentTime = 0;
    static_cast<void>(m_reader->Flush(static_cast<DWORD>(m_streamIndex)));
    PushBounded(m_seekTargets, time, SeekLoopTargets);
    const PropVariantHelper position(SaturatingSum(m_firstSampleTime, time));
    const tagPROPVARIANT* variant = position;
    if (FAILED(m_reader->SetCurrentPosition(GUID_NULL, *variant))) {
        Log(ReadSampleOp::SeekFailed);
        return false;
    }
    return true;
}

// A read that gives no sample, for whatever reason, is a step that got nowhere.
void WinH264FastSampleFinder::ReadSample() {
    DWORD flags = 0;
    LONGLONG time = 0;
    com::ComPtr<IMFSample> sample;
    const HRESULT result = m_reader->ReadSample(static_cast<DWORD>(m_streamIndex), 0, nullptr,
                                                &flags, &time, sample.Put());
    if (SUCCEEDED(result) && sample) {
        OnSampleRead(sample.Get());
        m_currentSample = std::move(sample);
    }
}

bool WinH264FastSampleFinder::NeedToSeekBetweenTimes(std::int64_t from, std::int64_t to) const {
    if (!m_decider) {
        throw std::runtime_error("WinH264FastSampleFinder: No Seek-or-Step-Through Decider!");
    }
    return m_decider->NeedToSeekBetweenTimes(from, to);
}

void WinH264FastSampleFinder::Log(ReadSampleOp operation) {
    PushBounded(m_operations, operation, LogEntries);
}

} // namespace Zanthe
