#include "zanthe/audio/mf/MFAudioReader.h"

#include "zanthe/audio/mf/AudioTimes.h"
#include "zanthe/audio/mf/SampleBytes.h"
#include "zanthe/audio/mf/StereoPlanes.h"
#include "zanthe/h264/ReferenceTime.h"

namespace Zanthe {

using SampleInRange = MFAudioSampleFinder::SampleInRange;

namespace {

constexpr std::size_t ChannelCount = 2;
// Moves in a row that bring no frame: a source that lands to and fro would be asked for ever.
constexpr int MostIdleMoves = 100;

} // namespace

MFAudioReader::MFAudioReader(const std::string& path)
    : MFAudioReaderBase(path, false) {}

MFAudioReader::MFAudioReader(IMFMediaSource* source)
    : MFAudioReaderBase(source, false) {}

MFAudioReader::~MFAudioReader() = default;

unsigned int MFAudioReader::FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                            std::vector<float*>& channels) {
    if (channels.size() != ChannelCount || !MoveTo(startFrame)) {
        return 0;
    }
    StereoPlanes planes(channels[0], channels[1], frameCount);
    CopyFrames(startFrame, planes);
    return planes.Written();
}

void MFAudioReader::CopyFrames(std::int64_t frame, StereoPlanes& planes) {
    int idleMoves = 0;
    while (!planes.IsFull() && idleMoves < MostIdleMoves) {
        const unsigned int copied =
            RangeOf(frame) == SampleInRange::Within ? CopyFromCurrentSample(frame, planes) : 0;
        frame += copied;
        idleMoves = copied > 0 ? 0 : idleMoves + 1;
        if (copied == 0 && !MoveOnTo(frame)) {
            return;
        }
    }
}

unsigned int MFAudioReader::CopyFromCurrentSample(std::int64_t frame, StereoPlanes& planes) {
    com::ComPtr<IMFSample> sample;
    LONGLONG time = 0;
    if (!Finder().GetCurrentSample(sample.Put()) || FAILED(sample->GetSampleTime(&time))) {
        return 0;
    }
    const SampleBytes bytes(*sample);
    const std::int64_t frames = bytes.ByteCount() / BlockAlign();
    const std::int64_t skipped = SaturatingDifference(frame, FrameAtTime(time, SampleRate()));
    // Where times are rounded, a frame may fall on the edge of a sample that does not hold it.
    if (skipped < 0 || skipped >= frames) {
        return 0;
    }
    return planes.Append(bytes.Bytes() + skipped * BlockAlign(),
                         static_cast<std::uint64_t>(frames - skipped));
}

// From a sample that has nothing of the frame.
bool MFAudioReader::MoveOnTo(std::int64_t frame) {
    switch (RangeOf(frame)) {
    case SampleInRange::Within:
    case SampleInRange::After:
        return Finder().AdvanceToNextSample(nullptr);
    case SampleInRange::Before:
        return Finder().SeekAndWaitForSample(TimeOf(frame), nullptr);
    case SampleInRange::NoAnswer:
        break;
    }
    return false;
}

void MFAudioReader::SetForcedSeekInterval(std::int64_t frames) {
    Finder().SetForcedSeekInterval(frames);
}

std::int64_t MFAudioReader::ForcedSeekInterval() const {
    return Finder().ForcedSeekInterval();
}

std::int64_t MFAudioReader::GetPresentationLength() const {
    return Finder().GetPresentationLength();
}

std::int64_t MFAudioReader::SeekCount() const {
    return Finder().SeekCount();
}

} // namespace Zanthe
