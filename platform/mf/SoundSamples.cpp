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
    m_wanted = 0;
    m_last = av::SoundRead::Piece;
    return S_OK;
}

SampleRead SoundSamples::Read() {
    Gather();
    if (m_frames > 0) {
        return GiveGathered();
    }
    SampleRead read;
    if (m_last == av::SoundRead::End) {
        read.flags = MF_SOURCE_READERF_ENDOFSTREAM;
    } else {
        read.result = E_FAIL;
    }
    m_last = av::SoundRead::Piece;
    return read;
}

// An end or a failure behind some sound is told by the read behind it.
void SoundSamples::Gather() {
    av::SoundChunk chunk;
    while (m_last == av::SoundRead::Piece && (m_frames == 0 || m_frames < m_wanted)) {
        m_last = m_sound->Read(chunk);
        if (m_last == av::SoundRead::Piece) {
            m_bytes.insert(m_bytes.end(), chunk.bytes,
                           chunk.bytes + chunk.frames * m_sound->FrameBytes());
            m_from = m_frames == 0 ? chunk.start : m_from;
            m_frames += chunk.frames;
        }
    }
}

SampleRead SoundSamples::GiveGathered() {
    constexpr LONGLONG kMostFrames = 8192;
    SampleRead read;
    read.time = TimeOf(m_from);
    Pack(m_type, m_bytes);
    read.result =
        MakeFilledSample(m_bytes, read.time, TimeOf(m_from + m_frames) - read.time, read.sample);
    m_wanted = std::min(2 * m_frames, kMostFrames);
    m_bytes.clear();
    m_frames = 0;
    return read;
}

} // namespace mf
