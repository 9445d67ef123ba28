#include "zanthe/audio/mf/MFAudioReaderWin7.h"

#include <algorithm>

#include "platform/mf/Errors.h"
#include "zanthe/audio/mf/AudioTimes.h"
#include "zanthe/audio/mf/CanonicalFormat.h"
#include "zanthe/audio/mf/CanonicalResampler.h"
#include "zanthe/audio/mf/SampleBytes.h"
#include "zanthe/audio/mf/StereoPlanes.h"
#include "zanthe/core/AudioSampleRates.h"
#include "zanthe/h264/ReferenceTime.h"

namespace Zanthe {

using SampleInRange = MFAudioSampleFinder::SampleInRange;

namespace {

constexpr std::size_t ChannelCount = 2;
// Room for one pull of output: more than any one sample of a source gives.
constexpr unsigned int MostFramesAtOnce = 1U << 20;
// Passes in a row that bring no frame and take none: samples without sound are read past, but a
// resampler that only fails would be asked for ever.
constexpr int MostIdlePasses = 1000;

} // namespace

MFAudioReaderWin7::MFAudioReaderWin7(const std::string& path)
    : MFAudioReaderBase(path, true) {}

MFAudioReaderWin7::MFAudioReaderWin7(IMFMediaSource* source)
    : MFAudioReaderBase(source, true) {}

MFAudioReaderWin7::~MFAudioReaderWin7() {
    if (m_resampler) {
        m_resampler->ProcessMessage(MFT_MESSAGE_NOTIFY_END_STREAMING, 0);
    }
}

bool MFAudioReaderWin7::Initialize(int sampleRate) {
    const bool initialized = MFAudioReaderBase::Initialize(sampleRate);
    if (initialized && !m_resampler) {
        SetUpResampler();
    }
    return initialized;
}

// What fails here shows in the reads, which then answer 0.
void MFAudioReaderWin7::SetUpResampler() {
    m_resampler = CreateResampler();
    com::ComPtr<IMFMediaType> input;
    if (!m_resampler || !Finder().GetOutputType(input.Put()) || !input) {
        return;
    }
    static_cast<void>(SetResamplerTypes(*m_resampler, *input));
    MFT_OUTPUT_STREAM_INFO info{};
    m_resampler->GetOutputStreamInfo(0, &info);
    m_resampler->ProcessMessage(MFT_MESSAGE_NOTIFY_BEGIN_STREAMING, 0);
}

unsigned int MFAudioReaderWin7::FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                                std::vector<float*>& channels) {
    if (frameCount == 0 || startFrame < 0 || channels.size() != ChannelCount || !m_resampler) {
        return 0;
    }
    const std::int64_t frame = ConvertFrameCount(startFrame, CanonicalRate, SampleRate());
    if (!MoveTo(frame)) {
        return 0;
    }
    StereoPlanes planes(channels[0], channels[1], frameCount);
    if (m_nextCanonicalFrame != startFrame) {
        m_resampler->ProcessMessage(MFT_MESSAGE_COMMAND_FLUSH, 0);
    } else {
        Drain(planes);
    }
    Resample(frame + ConvertFrameCount(planes.Written(), CanonicalRate, SampleRate()), planes);
    m_nextCanonicalFrame = SaturatingSum(startFrame, planes.Written());
    return planes.Written();
}

MFAudioReaderWin7::Pull MFAudioReaderWin7::PullInto(StereoPlanes& planes) {
    const auto output = MakeOutputSample(std::min(planes.Missing(), MostFramesAtOnce));
    if (!output) {
        return {E_OUTOFMEMORY, 0};
    }
    const HRESULT result = PullResampled(*m_resampler, *output);
    return {result, SUCCEEDED(result) ? TakeFrames(*output, planes) : 0};
}

// What the last read has left in the resampler.
void MFAudioReaderWin7::Drain(StereoPlanes& planes) {
    m_resampler->ProcessMessage(MFT_MESSAGE_COMMAND_DRAIN, 0);
    while (!planes.IsFull() && PullInto(planes).frames > 0) {
    }
}

void MFAudioReaderWin7::Resample(std::int64_t frame, StereoPlanes& planes) {
    bool isLastPass = false;
    for (int idle = 0; !planes.IsFull() && !isLastPass && idle < MostIdlePasses;) {
        if (RangeOf(frame) == SampleInRange::After) {
            Finder().AdvanceToNextSample(nullptr);
        }
        const Feed feed = FeedResampler(frame);
        isLastPass = feed.result == E_BOUNDS;
        frame = SaturatingSum(frame, feed.consumed);
        const Pull pull = PullInto(planes);
        if (FAILED(pull.result) && pull.result != MF_E_TRANSFORM_NEED_MORE_INPUT) {
            return;
        }
        idle = pull.frames == 0 && feed.consumed == 0 ? idle + 1 : 0;
    }
}

MFAudioReaderWin7::Feed MFAudioReaderWin7::FeedResampler(std::int64_t frame) {
    if (!Finder().IsInitialized()) {
        return {E_UNEXPECTED, 0};
    }
    // A sample's duration may be rounded up, so that the frame behind its last one seems to be
    // within it still: the question then goes on to the next frame, but not what is fed.
    for (std::int64_t sought = frame;; ++sought) {
        SampleInRange range = RangeOf(sought);
        if (range == SampleInRange::After) {
            Finder().AdvanceToNextSample(nullptr);
            range = RangeOf(sought);
        }
        if (range != SampleInRange::Within) {
            return {range == SampleInRange::NoAnswer ? E_BOUNDS : E_UNEXPECTED, 0};
        }
        const Feed feed = FeedCurrentSample(frame);
        if (feed.result != S_FALSE) {
            return feed;
        }
    }
}

// The rest of the current sample from `frame` on; S_FALSE where nothing is left.
MFAudioReaderWin7::Feed MFAudioReaderWin7::FeedCurrentSample(std::int64_t frame) {
    com::ComPtr<IMFSample> sample;
    LONGLONG time = 0;
    if (!Finder().GetCurrentSample(sample.Put()) || FAILED(sample->GetSampleTime(&time))) {
        return {E_UNEXPECTED, 0};
    }
    const SampleBytes bytes(*sample);
    if (FAILED(bytes.Result())) {
        return {bytes.Result(), 0};
    }
    const std::int64_t frames = bytes.ByteCount() / BlockAlign();
    const std::int64_t skipped = SaturatingDifference(frame, FrameAtTime(time, SampleRate()));
    if (skipped >= frames) {
        return {S_FALSE, 0};
    }
    const std::int64_t first = std::max<std::int64_t>(skipped, 0);
    const std::int64_t count = frames - first;
    const auto input = MakeSampleOf(bytes.Bytes() + first * BlockAlign(),
                                    static_cast<std::uint32_t>(count * BlockAlign()));
    if (!input) {
        return {E_OUTOFMEMORY, 0};
    }
    const HRESULT result = m_resampler->ProcessInput(0, input.Get(), 0);
    return {result == S_FALSE ? S_OK : result, SUCCEEDED(result) ? count : 0};
}

std::int64_t MFAudioReaderWin7::GetPresentationLength() const {
    return Finder().GetPresentationLength();
}

std::int64_t MFAudioReaderWin7::SeekCount() const {
    return Finder().SeekCount();
}

} // namespace Zanthe
