#include "zanthe/audio/mf/MFAudioReaderBase.h"

#include "platform/mf/Sample.h"
#include "zanthe/audio/mf/AudioTimes.h"
#include "zanthe/h264/ReferenceTime.h"

namespace Zanthe {

using SampleInRange = MFAudioSampleFinder::SampleInRange;

namespace {

// Decoding runs much faster than the sound lasts, and a seek costs a flush: so far it is cheaper to
// go on.
constexpr std::int64_t FarthestStep = 50'000'000; // in units of 100 ns

} // namespace

MFAudioReaderBase::MFAudioReaderBase(const std::string& path, bool useNativeFormat)
    : m_sampleFinder(std::make_unique<MFAudioSampleFinder>(path, useNativeFormat)) {}

MFAudioReaderBase::MFAudioReaderBase(IMFMediaSource* source, bool useNativeFormat)
    : m_sampleFinder(std::make_unique<MFAudioSampleFinder>(source, useNativeFormat)) {}

MFAudioReaderBase::~MFAudioReaderBase() = default;

bool MFAudioReaderBase::Initialize(int sampleRate) {
    if (!Finder().Initialize(sampleRate)) {
        return false;
    }
    m_sampleRate = Finder().AudioSampleFormat().samplesPerSecond;
    m_blockAlign = Finder().AudioSampleFormat().blockAlign;
    return true;
}

std::int64_t MFAudioReaderBase::TimeOf(std::int64_t frame) const {
    return TimeOfFrame(frame, m_sampleRate);
}

SampleInRange MFAudioReaderBase::RangeOf(std::int64_t frame) const {
    return Finder().IsTimeWithinCurrentSample(TimeOf(frame));
}

bool MFAudioReaderBase::MoveTo(std::int64_t frame) {
    if (!Finder().IsInitialized()) {
        return false;
    }
    const std::int64_t time = TimeOf(frame);
    switch (Finder().IsTimeWithinCurrentSample(time)) {
    case SampleInRange::Within:
        return true;
    case SampleInRange::After:
        return MoveForwardTo(time);
    case SampleInRange::Before:
    case SampleInRange::NoAnswer:
        break;
    }
    return SeekTo(time);
}

// Some files last a little longer than they say. Behind the told end nothing can be sought, so that
// is stepped to from the last time that can.
bool MFAudioReaderBase::SeekTo(std::int64_t time) {
    const std::int64_t length = Finder().GetPresentationLength();
    if (time < length) {
        return Finder().SeekAndWaitForSample(time, nullptr);
    }
    return length > 0 && SaturatingDifference(time, length) < FarthestStep &&
           Finder().SeekAndWaitForSample(length - 1, nullptr) && StepTo(time);
}

bool MFAudioReaderBase::MoveForwardTo(std::int64_t time) {
    com::ComPtr<IMFSample> sample;
    if (!Finder().GetCurrentSample(sample.Put())) {
        return false;
    }
    LONGLONG start = 0;
    LONGLONG duration = 0;
    sample->GetSampleTime(&start);
    sample->GetSampleDuration(&duration);
    const std::int64_t last = SaturatingDifference(SaturatingSum(start, duration), 1);
    return SaturatingDifference(time, last) < FarthestStep ? StepTo(time) : SeekTo(time);
}

bool MFAudioReaderBase::StepTo(std::int64_t time) {
    while (Finder().IsTimeWithinCurrentSample(time) == SampleInRange::After &&
           Finder().AdvanceToNextSample(nullptr)) {
    }
    return Finder().IsTimeWithinCurrentSample(time) == SampleInRange::Within;
}

} // namespace Zanthe
