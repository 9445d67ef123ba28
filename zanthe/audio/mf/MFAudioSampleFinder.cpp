#include "zanthe/audio/mf/MFAudioSampleFinder.h"

#include <limits>
#include <set>
#include <utility>

#include "platform/mf/MediaFormats.h"
#include "platform/mf/Sample.h"
#include "platform/win32/Text.h"
#include "zanthe/audio/mf/AsyncAudioSource.h"
#include "zanthe/audio/mf/AudioMediaType.h"
#include "zanthe/audio/mf/AudioTimes.h"
#include "zanthe/audio/mf/SampleBytes.h"
#include "zanthe/h264/ReferenceTime.h"

namespace Zanthe {

namespace {

constexpr std::int64_t ForcedSeekSeconds = 60;
constexpr int MostPasses = 101; // of one walk
// A step of a walk may be a seek, with a walk of its own, and so on. A source that always lands
// short would be sought in for ever.
constexpr int MostWalksWithin = 101;
constexpr int MostMoves = MostPasses * MostWalksWithin; // of all of them
// A seek that lands behind its target is made up for by one that goes this many samples further.
constexpr int SamplesToGoBack = 5;
// Samples without sound bring nobody forward; a source that gives nothing else has ended.
constexpr int MostEmptySamples = 1000;

// Gives back what is there.
void Replace(IMFSample** place, const com::ComPtr<IMFSample>& sample) {
    const auto before = com::ComPtr<IMFSample>::Attach(*place);
    sample.CopyTo(place);
}

} // namespace

MFAudioSampleFinder::MFAudioSampleFinder(const std::string& path, bool useNativeFormat)
    : m_filePath(path)
    , m_useNativeFormat(useNativeFormat)
    , m_source(std::make_unique<AsyncAudioSource>())
    , m_presentationLength(std::numeric_limits<std::int64_t>::max()) {}

MFAudioSampleFinder::MFAudioSampleFinder(IMFMediaSource* source, bool useNativeFormat)
    : MFAudioSampleFinder(std::string(), useNativeFormat) {
    m_mediaSource = com::ComPtr<IMFMediaSource>(source);
}

MFAudioSampleFinder::~MFAudioSampleFinder() = default;

bool MFAudioSampleFinder::Initialize(int sampleRate) {
    if (m_initialized) {
        return true;
    }
    m_initialized = OpenSource() && ChooseFormat(sampleRate) && UseFormat() && ReadFirstSample();
    return m_initialized;
}

bool MFAudioSampleFinder::OpenSource() {
    const HRESULT result = m_mediaSource ? m_source->Open(*m_mediaSource)
                                         : m_source->Open(win32::Utf8ToWide(m_filePath));
    return SUCCEEDED(result);
}

bool MFAudioSampleFinder::ChooseFormat(int sampleRate) {
    if (m_useNativeFormat) {
        com::ComPtr<IMFMediaType> native;
        if (FAILED(m_source->GetNativeType(native.Put())) || !native) {
            return false;
        }
        m_format = DecodedFormatOf(*native);
    } else {
        constexpr std::uint32_t channels = 2;
        constexpr std::uint32_t bits = 32;
        m_format.subtype = MFAudioFormat_Float;
        m_format.channels = channels;
        m_format.samplesPerSecond = sampleRate > 0 ? static_cast<std::uint32_t>(sampleRate) : 0;
        m_format.bitsPerSample = bits;
    }
    m_format.blockAlign = (m_format.bitsPerSample * m_format.channels) >> 3;
    m_forcedSeekInterval = m_format.samplesPerSecond * ForcedSeekSeconds;
    // Everything is counted by these two.
    return m_format.blockAlign > 0 && m_format.samplesPerSecond > 0;
}

bool MFAudioSampleFinder::UseFormat() {
    const com::ComPtr<IMFMediaType> type = MakeAudioType(m_format, SampleSizes::Fixed);
    if (!type || FAILED(m_source->SetCurrentType(*type)) || FAILED(m_source->SelectAlone())) {
        return false;
    }
    if (const auto duration = m_source->Duration()) {
        m_presentationLength = *duration;
    }
    return true;
}

bool MFAudioSampleFinder::ReadFirstSample() {
    SourceAnswer answer = m_source->Read();
    if (FAILED(answer.result)) {
        return false;
    }
    m_currentSample = std::move(answer.sample);
    m_streamIndex = static_cast<std::int32_t>(answer.streamIndex);
    m_firstSampleTime = answer.timestamp;
    FixSampleBehindSeek();
    return true;
}

// Whether there is a current sample then.
bool MFAudioSampleFinder::ReadSample() {
    m_currentSample.Reset();
    SourceAnswer answer = m_source->Read();
    if (FAILED(answer.result)) {
        return false;
    }
    m_currentSample = std::move(answer.sample);
    return !HasNullCurrentSample();
}

std::int64_t MFAudioSampleFinder::CurrentTime() const {
    LONGLONG time = 0;
    static_cast<void>(m_currentSample->GetSampleTime(&time));
    return time;
}

std::int64_t MFAudioSampleFinder::CurrentDuration() const {
    LONGLONG duration = 0;
    static_cast<void>(m_currentSample->GetSampleDuration(&duration));
    return duration;
}

// Whatever the source says, a sample lasts as long as its bytes.
void MFAudioSampleFinder::FixDuration() {
    if (const auto bytes = ByteCountOf(*m_currentSample)) {
        const std::int64_t duration =
            TimeOfFrame(*bytes / m_format.blockAlign, m_format.samplesPerSecond);
        if (CurrentDuration() != duration) {
            static_cast<void>(m_currentSample->SetSampleDuration(duration));
        }
    }
    m_emptySamples = CurrentDuration() <= 0 ? m_emptySamples + 1 : 0;
}

void MFAudioSampleFinder::FixSampleBehindSeek() {
    m_framesSinceSeek = 0;
    m_baseFrame = 0;
    if (!m_currentSample) {
        return;
    }
    FixDuration();
    const std::int64_t time = SaturatingDifference(CurrentTime(), m_firstSampleTime);
    static_cast<void>(m_currentSample->SetSampleTime(time));
    m_baseFrame = FrameAtTime(time, m_format.samplesPerSecond);
}

void MFAudioSampleFinder::FixSampleBehindStep() {
    FixDuration();
    static_cast<void>(m_currentSample->SetSampleTime(CountedTime()));
}

// Where the frame behind the counted ones stands.
std::int64_t MFAudioSampleFinder::CountedTime() const {
    return TimeOfFrame(SaturatingSum(m_baseFrame, m_framesSinceSeek), m_format.samplesPerSecond);
}

MFAudioSampleFinder::SampleInRange
MFAudioSampleFinder::IsTimeWithinCurrentSample(std::int64_t time) const {
    if (!m_initialized || !m_currentSample) {
        return SampleInRange::NoAnswer;
    }
    const std::int64_t start = CurrentTime();
    if (time >= SaturatingSum(start, CurrentDuration())) {
        return SampleInRange::After;
    }
    return time < start ? SampleInRange::Before : SampleInRange::Within;
}

bool MFAudioSampleFinder::SeekTo(std::int64_t time) {
    if (!m_initialized || time < 0 || time >= m_presentationLength) {
        return false;
    }
    if (FAILED(m_source->Seek(SaturatingSum(m_firstSampleTime, time)))) {
        return false;
    }
    ++m_seekCount;
    if (!ReadSample()) {
        return false;
    }
    FixSampleBehindSeek();
    return true;
}

bool MFAudioSampleFinder::AdvanceToNextSample(IMFSample** sample) {
    BeginSearch();
    return Advance(sample);
}

void MFAudioSampleFinder::BeginSearch() {
    m_openWalks = 0;
    m_movesLeft = MostMoves;
}

bool MFAudioSampleFinder::Advance(IMFSample** sample) {
    if (!m_initialized) {
        return false;
    }
    if (m_currentSample) {
        const std::int64_t frames = FrameAtTime(CurrentDuration(), m_format.samplesPerSecond);
        m_framesSinceSeek = SaturatingSum(m_framesSinceSeek, frames);
    }
    if (m_framesSinceSeek >= m_forcedSeekInterval) {
        // One unit on, so that the target is inside the next sample and not at its edge.
        return SeekAndWalk(SaturatingSum(CountedTime(), 1), sample);
    }
    if (!StepToNextSample()) {
        return false;
    }
    GiveCurrentSample(sample);
    return true;
}

bool MFAudioSampleFinder::StepToNextSample() {
    if (m_emptySamples >= MostEmptySamples || !ReadSample()) {
        m_currentSample.Reset();
        return false;
    }
    FixSampleBehindStep();
    return true;
}

bool MFAudioSampleFinder::SeekAndWaitForSample(std::int64_t time, IMFSample** sample) {
    BeginSearch();
    return SeekAndWalk(time, sample);
}

bool MFAudioSampleFinder::SeekAndWalk(std::int64_t time, IMFSample** sample) {
    if (m_openWalks >= MostWalksWithin || !SeekTo(time)) {
        return false;
    }
    GiveCurrentSample(sample);
    ++m_openWalks;
    const bool found = WalkTo(time);
    --m_openWalks;
    return found;
}

// From wherever a seek has landed.
bool MFAudioSampleFinder::WalkTo(std::int64_t time) {
    std::set<std::int64_t> seen;
    for (int pass = 0; pass < MostPasses && m_movesLeft > 0; ++pass) {
        --m_movesLeft;
        const SampleInRange range = IsTimeWithinCurrentSample(time);
        if (range == SampleInRange::NoAnswer || range == SampleInRange::Within) {
            return range == SampleInRange::Within;
        }
        if (!seen.insert(CurrentTime()).second || !MoveTowards(time, range)) {
            return false;
        }
    }
    return false;
}

bool MFAudioSampleFinder::MoveTowards(std::int64_t time, SampleInRange range) {
    if (range == SampleInRange::After) {
        return Advance(nullptr);
    }
    // `time` is on the timeline already; the first sample's time is taken off all the same.
    std::int64_t target = SaturatingDifference(time, m_firstSampleTime);
    for (int i = 0; i < SamplesToGoBack; ++i) {
        target = SaturatingDifference(target, CurrentDuration());
    }
    return SeekTo(target < 0 ? 0 : target);
}

void MFAudioSampleFinder::GiveCurrentSample(IMFSample** sample) const {
    if (sample != nullptr) {
        Replace(sample, m_currentSample);
    }
}

bool MFAudioSampleFinder::GetCurrentSample(IMFSample** sample) const {
    const bool has = m_initialized && m_currentSample;
    if (sample != nullptr) {
        Replace(sample, has ? m_currentSample : com::ComPtr<IMFSample>());
    }
    return has;
}

bool MFAudioSampleFinder::GetOutputType(IMFMediaType** type) const {
    return m_initialized && SUCCEEDED(m_source->GetCurrentType(type));
}

} // namespace Zanthe
