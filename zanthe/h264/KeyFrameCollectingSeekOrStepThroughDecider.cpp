#include "zanthe/h264/KeyFrameCollectingSeekOrStepThroughDecider.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "platform/com/ClassRegistry.h"
#include "platform/mf/MediaFormats.h"
#include "platform/win32/Event.h"
#include "platform/win32/Thread.h"
#include "platform/win32/Wait.h"
#include "zanthe/h264/KeyFrameCache.h"
#include "zanthe/h264/KeyframeCollectorFactory.h"

namespace Zanthe {

namespace {

// Without a container there is no index to collect from.
bool IsElementaryStream(const GUID& subtype) {
    return subtype == MFVideoFormat_H264_ES || subtype == MFVideoFormat_HEVC_ES;
}

std::int64_t AverageInterval(std::size_t keyFrames, std::int64_t duration) {
    return keyFrames > 1
               ? static_cast<std::int64_t>(static_cast<std::uint64_t>(duration) / (keyFrames - 1))
               : 0;
}

// Of two times of which `to` is the later one; as a signed number it might not fit.
std::uint64_t Distance(std::int64_t from, std::int64_t to) {
    return static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
}

// Signals an event when it goes, however that comes about.
class SignalAtEnd {
public:
    explicit SignalAtEnd(HANDLE event)
        : m_event(event) {}

    SignalAtEnd(const SignalAtEnd&) = delete;
    SignalAtEnd& operator=(const SignalAtEnd&) = delete;

    ~SignalAtEnd() { SetEvent(m_event); }

private:
    HANDLE m_event;
};

} // namespace

KeyFrameCollectingSeekOrStepThroughDecider::KeyFrameCollectingSeekOrStepThroughDecider(
    const std::string& path, int streamIndex, std::int64_t firstSampleTime, GUID subtype)
    : KeyFrameCollectingSeekOrStepThroughDecider(path, streamIndex, firstSampleTime, subtype,
                                                 MakeKeyframeCollector()) {}

KeyFrameCollectingSeekOrStepThroughDecider::KeyFrameCollectingSeekOrStepThroughDecider(
    const std::string& path, int streamIndex, std::int64_t firstSampleTime, GUID subtype,
    std::unique_ptr<IH264KeyframeCollector> collector)
    : m_path(path)
    , m_streamIndex(streamIndex)
    , m_firstSampleTime(firstSampleTime)
    , m_subtype(subtype)
    , m_ready(CreateEventW(nullptr, TRUE, FALSE, nullptr))
    , m_collector(std::move(collector)) {
    StartCollection();
}

KeyFrameCollectingSeekOrStepThroughDecider::~KeyFrameCollectingSeekOrStepThroughDecider() {
    if (m_thread != nullptr) {
        WaitForSingleObject(m_thread, INFINITE);
        CloseHandle(m_thread);
    }
    CloseHandle(m_ready);
}

void KeyFrameCollectingSeekOrStepThroughDecider::StartCollection() {
    auto entry = KeyFrameCache::OfProcess().FindOrBegin(m_path, !IsElementaryStream(m_subtype));
    if (entry) {
        m_keyFrameTimes = std::move(entry->keyFrameTimes);
        m_duration = entry->duration;
        m_averageInterval = entry->averageInterval;
        SetEvent(m_ready);
        return;
    }
    const std::uintptr_t thread = _beginthreadex(nullptr, 0, CollectOnThread, this, 0, nullptr);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the SDK answers the handle as a number
    m_thread = reinterpret_cast<HANDLE>(thread);
    if (m_thread == nullptr) {
        Collect(); // without a thread it takes its time here; the table is there all the same
    }
}

unsigned int KeyFrameCollectingSeekOrStepThroughDecider::CollectOnThread(void* decider) {
    const bool begun = SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    static_cast<KeyFrameCollectingSeekOrStepThroughDecider*>(decider)->Collect();
    if (begun) {
        CoUninitialize();
    }
    return 0;
}

// Whatever comes of it, whoever waits is let go.
void KeyFrameCollectingSeekOrStepThroughDecider::Collect() {
    const SignalAtEnd ready(m_ready);
    bool collected = false;
    try {
        collected = m_collector->CollectKeyframeTimesAndDuration(m_path, m_firstSampleTime,
                                                                 m_keyFrameTimes, m_duration);
    } catch (...) {
        m_keyFrameTimes.clear(); // half a table would mislead
        m_duration = 0;
    }
    m_collectionSucceeded = collected && !m_keyFrameTimes.empty();
    m_averageInterval = AverageInterval(m_keyFrameTimes.size(), m_duration);
    Share();
}

// Without the memory for it the table is this decider's alone, and the next one collects anew.
void KeyFrameCollectingSeekOrStepThroughDecider::Share() {
    KeyFrameCache& cache = KeyFrameCache::OfProcess();
    try {
        cache.Finish(m_path, {m_keyFrameTimes, m_duration, m_averageInterval});
    } catch (const std::bad_alloc&) {
        cache.GiveUp(m_path);
    }
}

bool KeyFrameCollectingSeekOrStepThroughDecider::NeedToSeekBetweenTimes(std::int64_t from,
                                                                        std::int64_t to) const {
    if (to <= from) {
        return true;
    }
    if (Distance(from, to) < static_cast<std::uint64_t>(m_averageInterval.load())) {
        return false;
    }
    std::int64_t keyOfFrom = 0;
    std::int64_t keyOfTo = 0;
    if (!FindKeyFrameAtOrBefore(from, keyOfFrom) || !FindKeyFrameAtOrBefore(to, keyOfTo)) {
        throw std::runtime_error("Couldn't find key frame times");
    }
    return keyOfFrom != keyOfTo && !AreConsecutiveKeyFrames(from, to);
}

bool KeyFrameCollectingSeekOrStepThroughDecider::FindKeyFrameAtOrBefore(
    std::int64_t time, std::int64_t& result) const {
    WaitUntilReady();
    if (time > m_duration || m_keyFrameTimes.empty()) {
        return false;
    }
    result = m_keyFrameTimes[IndexOf(time)];
    return true;
}

bool KeyFrameCollectingSeekOrStepThroughDecider::AreConsecutiveKeyFrames(std::int64_t a,
                                                                         std::int64_t b) const {
    WaitUntilReady();
    return !m_keyFrameTimes.empty() && IndexOf(b) == IndexOf(a) + 1;
}

// REQUIRES: a table that is not empty.
std::size_t KeyFrameCollectingSeekOrStepThroughDecider::IndexOf(std::int64_t time) const {
    const auto begin = m_keyFrameTimes.begin();
    auto found = std::lower_bound(begin, m_keyFrameTimes.end(), time);
    if (found == m_keyFrameTimes.end() || (*found != time && found != begin)) {
        --found;
    }
    return static_cast<std::size_t>(found - begin);
}

void KeyFrameCollectingSeekOrStepThroughDecider::WaitUntilReady() const {
    WaitForSingleObject(m_ready, INFINITE);
}

} // namespace Zanthe
