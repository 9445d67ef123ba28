#include "zanthe/audio/mf/LegacyMFAudioReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "platform/mf/Errors.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/SourceReader.h"
#include "platform/mf/Transform.h"
#include "zanthe/analysis/WindowsVersionProvider.h"
#include "zanthe/audio/mf/AsyncAudioSource.h"
#include "zanthe/audio/mf/AudioMediaType.h"
#include "zanthe/audio/mf/AudioTimes.h"
#include "zanthe/audio/mf/CanonicalFormat.h"
#include "zanthe/audio/mf/CanonicalResampler.h"
#include "zanthe/audio/mf/SampleBytes.h"
#include "zanthe/audio/mf/StereoPlanes.h"
#include "zanthe/h264/ReferenceTime.h"

namespace Zanthe {

namespace {

constexpr std::size_t ChannelCount = 2;
constexpr std::int64_t MostFramesWithoutSeek = 2'645'999; // a frame short of 60 seconds
constexpr int MostAttempts = 30;
constexpr int AttemptsBeforeAdjusting = 5;
constexpr int AttemptsBeforeTakingOver = 3;
constexpr std::int64_t ShareOfMiss = 5;
// Answers in a row that bring no frame. A source that gives nothing else, and a resampler that only
// fails, would be asked for ever.
constexpr int MostIdleAnswers = 1000;

std::int64_t RoundedHalfUp(double value) {
    return RoundedToInt64(std::floor(value + 0.5));
}

std::int64_t TimeOf(std::int64_t frame) {
    return RoundedHalfUp(static_cast<double>(frame) / CanonicalRate * UnitsPerSecond);
}

std::int64_t FrameAt(std::int64_t time) {
    return RoundedHalfUp(static_cast<double>(time) / UnitsPerSecond * CanonicalRate);
}

std::int64_t StartOf(IMFSample& sample) {
    LONGLONG time = 0;
    static_cast<void>(sample.GetSampleTime(&time));
    return time;
}

std::int64_t EndOf(IMFSample& sample) {
    LONGLONG duration = 0;
    static_cast<void>(sample.GetSampleDuration(&duration));
    return SaturatingSum(StartOf(sample), duration);
}

std::int64_t FramesOf(IMFSample& sample) {
    return ByteCountOf(sample).value_or(0) / CanonicalBlockAlign;
}

bool Has(DWORD flags, DWORD wanted) {
    return (flags & wanted) != 0;
}

// Where the last seeks have landed.
class Landings {
public:
    void Note(std::int64_t time) {
        m_times[m_count % m_times.size()] = time;
        ++m_count;
    }

    bool AreAlike() const {
        return std::all_of(m_times.begin(), m_times.end(),
                           [this](std::int64_t time) { return time == m_times.front(); });
    }

private:
    std::array<std::int64_t, AttemptsBeforeTakingOver> m_times{};
    std::size_t m_count = 0;
};

} // namespace

LegacyMFAudioReader::LegacyMFAudioReader(CStringW path, bool flag)
    : m_path(std::move(path))
    , m_directOutput(!flag)
    , m_source(std::make_unique<AsyncAudioSource>())
    , m_blockAlign(CanonicalBlockAlign) {}

LegacyMFAudioReader::LegacyMFAudioReader(IMFMediaSource* source)
    : LegacyMFAudioReader(CStringW(), false) {
    m_initialized = true;
    if (source == nullptr || FAILED(m_source->Open(*source))) {
        return;
    }
    const HRESULT selected = m_source->SelectAlone();
    m_streamLength = m_source->Duration().value_or(0);
    // Samples in another format would be read as if they were in this one.
    if (FAILED(selected) || FAILED(UseCanonicalFormat())) {
        m_source = std::make_unique<AsyncAudioSource>();
    }
}

LegacyMFAudioReader::~LegacyMFAudioReader() = default;

HRESULT LegacyMFAudioReader::Initialize() {
    if (m_initialized) {
        return S_OK;
    }
    HRESULT result = OpenFile();
    if (SUCCEEDED(result)) {
        result = ReadFirstSample();
        m_initialized = true;
    }
    return result;
}

HRESULT LegacyMFAudioReader::OpenFile() {
    if (const HRESULT result = m_source->Open(m_path); FAILED(result)) {
        return result;
    }
    if (const HRESULT result = m_source->SelectAlone(); FAILED(result)) {
        return result;
    }
    m_streamLength = m_source->Duration().value_or(0);
    com::ComPtr<IMFMediaType> native;
    const HRESULT result = m_source->GetNativeType(native.Put());
    if (FAILED(result) || !native) {
        return FAILED(result) ? result : E_UNEXPECTED;
    }
    m_directOutput = WindowsVersionProvider().IsWindows62OrLater();
    return m_directOutput ? UseCanonicalFormat() : UseResampler(*native);
}

HRESULT LegacyMFAudioReader::UseCanonicalFormat() {
    const auto type = MakeAudioType(CanonicalFormat(), SampleSizes::Fixed);
    return type ? m_source->SetCurrentType(*type) : E_OUTOFMEMORY;
}

HRESULT LegacyMFAudioReader::UseResampler(IMFMediaType& native) {
    MFAudioSampleFormat format = DecodedFormatOf(native);
    format.blockAlign = format.channels * (format.bitsPerSample >> 3);
    const auto type = MakeAudioType(format, SampleSizes::Untold);
    if (!type || format.blockAlign == 0) {
        return MF_E_INVALIDMEDIATYPE;
    }
    m_blockAlign = format.blockAlign;
    if (const HRESULT result = m_source->SetCurrentType(*type); FAILED(result)) {
        return result;
    }
    m_resampler = CreateResampler();
    if (!m_resampler) {
        return E_FAIL;
    }
    const HRESULT result = SetResamplerTypes(*m_resampler, *type);
    return FAILED(result) ? result
                          : m_resampler->ProcessMessage(MFT_MESSAGE_NOTIFY_BEGIN_STREAMING, 0);
}

// The sample begins the timeline, and the first run.
HRESULT LegacyMFAudioReader::ReadFirstSample() {
    SourceAnswer answer = m_source->Read();
    if (FAILED(answer.result)) {
        return answer.result;
    }
    m_firstSampleTime = answer.timestamp;
    if (answer.sample) {
        const std::int64_t frames = FramesOf(*answer.sample);
        Keep(std::move(answer.sample), 0, frames);
        m_framesSincePosition = frames;
    }
    return answer.result;
}

unsigned int LegacyMFAudioReader::FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                                  std::vector<float*>& channels) {
    if (channels.size() != ChannelCount || !m_initialized || startFrame < 0) {
        return 0;
    }
    StereoPlanes planes(channels[0], channels[1], frameCount);
    const std::int64_t time = TimeOf(startFrame);
    if (m_directOutput) {
        ReadDirect(time, planes);
    } else {
        ReadResampled(time, planes);
    }
    return planes.Written();
}

bool LegacyMFAudioReader::IsSeekForced() const {
    return m_framesSincePosition > MostFramesWithoutSeek;
}

// The sample that holds `time`, or where the seek for it landed; empty where nothing can be read.
com::ComPtr<IMFSample> LegacyMFAudioReader::SampleAtTime(std::int64_t time, bool force) {
    const bool isPosition = time < m_streamLength;
    const bool mustSeek = force && isPosition;
    const bool isBehind = !m_currentSample || time >= EndOf(*m_currentSample);
    if (!mustSeek && !isBehind && StartOf(*m_currentSample) <= time) {
        return m_currentSample;
    }
    const bool goesOn = isBehind && m_nextFrame >= 0 && FrameAt(time) == m_nextFrame;
    if (!mustSeek && goesOn) {
        return ReadUpTo(time, false);
    }
    if (!isPosition) {
        return {};
    }
    SeekTo(time);
    return ReadUpTo(time, true);
}

// Where it fails, the next landing shows it.
void LegacyMFAudioReader::SeekTo(std::int64_t time) {
    static_cast<void>(m_source->Seek(time));
    m_positionFrame = FrameAt(time);
    m_framesSincePosition = 0;
    m_nextFrame = -1; // until something has been read here
    ++m_seekCount;
}

// `sought`: the source's time stamp counts; otherwise the next sample is the one at `time`.
com::ComPtr<IMFSample> LegacyMFAudioReader::ReadUpTo(std::int64_t time, bool sought) {
    std::int64_t base = time;
    std::int64_t before = 0; // frames read here
    for (int idle = 0; idle < MostIdleAnswers;) {
        SourceAnswer answer = m_source->Read();
        const bool ends =
            Has(answer.streamFlags, MF_SOURCE_READERF_ENDOFSTREAM | MF_SOURCE_READERF_STREAMTICK);
        if (FAILED(answer.result) || ends || !answer.sample) {
            return {};
        }
        if (sought) {
            base = SaturatingDifference(StartOf(*answer.sample), m_firstSampleTime);
            sought = false;
        }
        const std::int64_t frames = FramesOf(*answer.sample);
        const std::int64_t start = SaturatingSum(base, TimeOf(before));
        if (SaturatingSum(start, TimeOf(frames)) >= time) {
            Keep(std::move(answer.sample), start, frames);
            m_positionFrame = FrameAt(start);
            m_framesSincePosition = frames;
            return m_currentSample;
        }
        before = SaturatingSum(before, frames);
        idle = frames == 0 ? idle + 1 : 0;
    }
    return {};
}

// The one behind the current run. Gaps are read past.
com::ComPtr<IMFSample> LegacyMFAudioReader::NextSample() {
    for (int idle = 0; idle < MostIdleAnswers; ++idle) {
        SourceAnswer answer = m_source->Read();
        if (FAILED(answer.result) || Has(answer.streamFlags, MF_SOURCE_READERF_ENDOFSTREAM)) {
            return {};
        }
        if (answer.sample) {
            const std::int64_t frames = FramesOf(*answer.sample);
            const std::int64_t first = SaturatingSum(m_positionFrame, m_framesSincePosition);
            Keep(std::move(answer.sample), TimeOf(first), frames);
            m_framesSincePosition = SaturatingSum(m_framesSincePosition, frames);
            return m_currentSample;
        }
        if (!Has(answer.streamFlags, MF_SOURCE_READERF_STREAMTICK)) {
            return {};
        }
    }
    return {};
}

void LegacyMFAudioReader::Keep(com::ComPtr<IMFSample> sample, std::int64_t time,
                               std::int64_t frames) {
    static_cast<void>(sample->SetSampleTime(time));
    static_cast<void>(sample->SetSampleDuration(TimeOf(frames)));
    m_currentSample = std::move(sample);
}

void LegacyMFAudioReader::ReadDirect(std::int64_t time, StereoPlanes& planes) {
    const bool force = IsSeekForced();
    std::int64_t target = time;
    bool tookOver = false;
    Landings landings;
    auto sample = SampleAtTime(target, force);
    for (int attempt = 1; sample && attempt <= MostAttempts; ++attempt) {
        const std::int64_t landing = StartOf(*sample);
        landings.Note(landing);
        if (attempt >= AttemptsBeforeTakingOver && !tookOver && landings.AreAlike()) {
            target = landing; // the source will not have it otherwise
            tookOver = true;
        } else if (CopyIfItHolds(*sample, target, planes)) {
            return;
        } else {
            target = TargetBehindMiss(*sample, target, attempt);
        }
        sample = SampleAtTime(target, force);
    }
}

// Reads from the sample on where it holds the target, or ends with it.
bool LegacyMFAudioReader::CopyIfItHolds(IMFSample& sample, std::int64_t target,
                                        StereoPlanes& planes) {
    const std::int64_t first = FrameAt(StartOf(sample));
    const std::int64_t wanted = FrameAt(target);
    {
        const SampleBytes bytes(sample);
        const std::int64_t frames = bytes.ByteCount() / CanonicalBlockAlign;
        const std::int64_t skipped = SaturatingDifference(wanted, first);
        if (skipped < 0 || skipped > frames) {
            return false;
        }
        planes.Append(bytes.Bytes() + skipped * CanonicalBlockAlign,
                      static_cast<std::uint64_t>(frames - skipped));
    }
    // Two calls without a frame between them cannot be told from the end.
    for (int idle = 0; !planes.IsFull() && idle < MostIdleAnswers; ++idle) {
        const auto next = NextSample();
        if (!next) {
            break;
        }
        const SampleBytes bytes(*next);
        if (planes.Append(bytes.Bytes(), bytes.ByteCount() / CanonicalBlockAlign) > 0) {
            idle = 0;
        }
    }
    m_nextFrame = SaturatingSum(wanted, planes.Written());
    return true;
}

std::int64_t LegacyMFAudioReader::TargetBehindMiss(IMFSample& sample, std::int64_t target,
                                                   int attempt) {
    ++m_reseekCount;
    if (attempt <= AttemptsBeforeAdjusting) {
        return target;
    }
    ++m_timeAdjustCount;
    const std::int64_t wanted = FrameAt(target);
    const std::int64_t miss = SaturatingDifference(FrameAt(StartOf(sample)), wanted);
    return TimeOf(SaturatingSum(miss / ShareOfMiss, wanted));
}

void LegacyMFAudioReader::ReadResampled(std::int64_t time, StereoPlanes& planes) {
    const std::int64_t frame = FrameAt(time);
    const bool force = IsSeekForced();
    if (m_nextFrame >= 0 && m_nextFrame == frame && !force) {
        m_resampler->ProcessMessage(MFT_MESSAGE_COMMAND_DRAIN, 0);
    } else if (!StartResampling(time, force)) {
        m_nextFrame = -1;
        return;
    }
    PullFrames(planes);
    m_nextFrame = SaturatingSum(frame, planes.Written());
}

bool LegacyMFAudioReader::StartResampling(std::int64_t time, bool force) {
    m_resampler->ProcessMessage(MFT_MESSAGE_COMMAND_FLUSH, 0);
    const auto sample = SampleAtTime(time, force);
    if (sample) {
        FeedSample(*sample, FrameAt(time));
    }
    return static_cast<bool>(sample);
}

// The sample from `frame` on, where it holds that or ends with it.
void LegacyMFAudioReader::FeedSample(IMFSample& sample, std::int64_t frame) {
    const SampleBytes bytes(sample);
    const std::int64_t frames = bytes.ByteCount() / m_blockAlign;
    const std::int64_t skipped = SaturatingDifference(frame, FrameAt(StartOf(sample)));
    if (skipped < 0 || skipped > frames) {
        return;
    }
    const auto input = MakeSampleOf(bytes.Bytes() + skipped * m_blockAlign,
                                    static_cast<std::uint32_t>((frames - skipped) * m_blockAlign));
    if (input) {
        static_cast<void>(m_resampler->ProcessInput(0, input.Get(), 0));
    }
}

void LegacyMFAudioReader::PullFrames(StereoPlanes& planes) {
    const auto output = MakeOutputSample(1);
    for (int idle = 0; output && !planes.IsFull() && idle < MostIdleAnswers; ++idle) {
        const HRESULT result = PullResampled(*m_resampler, *output);
        if (SUCCEEDED(result) && TakeFrames(*output, planes) > 0) {
            idle = 0;
        } else if (result == MF_E_TRANSFORM_NEED_MORE_INPUT) {
            const auto next = NextSample();
            if (!next) {
                return;
            }
            static_cast<void>(m_resampler->ProcessInput(0, next.Get(), 0));
        }
    }
}

std::int64_t LegacyMFAudioReader::StreamLength() const {
    return m_initialized ? m_streamLength : -1;
}

std::int32_t LegacyMFAudioReader::NumSeeks() const {
    return m_initialized ? m_seekCount : -1;
}

std::int32_t LegacyMFAudioReader::NumReseeks() const {
    return m_initialized ? m_reseekCount : -1;
}

std::int32_t LegacyMFAudioReader::NumTimeAdjusts() const {
    return m_initialized ? m_timeAdjustCount : -1;
}

} // namespace Zanthe
