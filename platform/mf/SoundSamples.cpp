#include "platform/mf/SoundSamples.h"

#include <algorithm>
#include <limits>

#include "platform/av/SoundTime.h"
#include "platform/mf/SampleMaking.h"
#include "platform/mf/SourceReader.h"

namespace mf {

std::unique_ptr<SoundSamples> SoundSamples::Create(av::SoundStream& stream, const SoundType& type) {
    auto sound = av::ConvertedSound::Create(stream, type.format);
    return sound == nullptr ? nullptr
                            : std::unique_ptr<SoundSamples>(
                                  new SoundSamples(std::move(sound), type, stream.Facts().start));
}

LONGLONG SoundSamples::TimeOf(LONGLONG frame) const {
    return m_start + av::TimeOfFrames(frame, m_type.format.rate);
}

// The last frame whose time is at or before `time`.
LONGLONG SoundSamples::FrameAt(LONGLONG time) const {
    constexpr LONGLONG kMost = LONGLONG{1} << 58; // what is added to it fits
    time = std::clamp(time, -kMost, kMost);
    const LONGLONG since = time - m_start;
    if (since <= 0) {
        return 0;
    }
    LONGLONG frame = av::WholeFramesIn(since, m_type.format.rate);
    while (TimeOf(frame + 1) <= time) {
        ++frame;
    }
    while (frame > 0 && TimeOf(frame) > time) {
        --frame;
    }
    return frame;
}

HRESULT SoundSamples::SetPosition(LONGLONG position) {
    m_sound->Seek(FrameAt(position));
    return S_OK;
}

SampleRead SoundSamples::Read() {
    SampleRead read;
    av::SoundChunk chunk;
    switch (m_sound->Read(chunk)) {
    case av::SoundRead::End:
        read.flags = MF_SOURCE_READERF_ENDOFSTREAM;
        break;
    case av::SoundRead::Failed:
        read.result = E_FAIL;
        break;
    case av::SoundRead::Piece:
        read.time = TimeOf(chunk.start);
        read.result = MakeSample(chunk, read.sample);
        break;
    }
    return read;
}

HRESULT SoundSamples::MakeSample(const av::SoundChunk& chunk,
                                 com::ComPtr<IMFSample>& sample) const {
    const auto size = static_cast<std::size_t>(chunk.frames * m_sound->FrameBytes());
    std::vector<std::uint8_t> bytes(chunk.bytes, chunk.bytes + size);
    Pack(m_type, bytes);
    const LONGLONG time = TimeOf(chunk.start);
    return MakeFilledSample(bytes, time, TimeOf(chunk.start + chunk.frames) - time, sample);
}

} // namespace mf
