#include "platform/brec/SoundTrack.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace BREC {

namespace {

constexpr std::int64_t UnitsPerSecond = 10'000'000; // of 100 ns

std::size_t FrameBytes(const AudioFormat& format) {
    return sizeof(std::int16_t) * static_cast<std::size_t>(format.channelCount());
}

// The frame that stands nearest to `time`, in units of 100 ns. REQUIRES: a rate that is served.
std::int64_t FrameAt(std::int64_t time, int rate) {
    const auto rest = static_cast<double>(time % UnitsPerSecond) / UnitsPerSecond;
    return time / UnitsPerSecond * rate + std::llround(rest * rate);
}

} // namespace

SoundTrack::SoundTrack(av::Track track, const AudioFormat& format, std::string path, int ordinal)
    : DescribedTrack(std::move(track), format)
    , m_path(std::move(path))
    , m_ordinal(ordinal) {}

SoundTrack::~SoundTrack() = default;

unsigned int SoundTrack::fillAudioBuffer(std::uint64_t startFrame, unsigned int frameCount,
                                         unsigned char* buffer) {
    const std::uint64_t length = lengthInFrames();
    if (startFrame >= length || !Open()) {
        return 0;
    }
    const auto count =
        static_cast<unsigned int>(std::min<std::uint64_t>(frameCount, length - startFrame));
    const std::int64_t first = static_cast<std::int64_t>(startFrame) - m_begin;
    const auto silent = static_cast<unsigned int>(std::clamp<std::int64_t>(-first, 0, count));
    const std::size_t silentBytes = silent * FrameBytes(Format());
    std::memset(buffer, 0, silentBytes);
    return silent + Sounding(first + silent, count - silent, buffer + silentBytes);
}

// Frames of the sound itself, as many as there are.
unsigned int SoundTrack::Sounding(std::int64_t frame, unsigned int frameCount,
                                  unsigned char* buffer) {
    const std::size_t size = FrameBytes(Format());
    unsigned int done = 0;
    while (done < frameCount && HasFrame(frame + done)) {
        const std::int64_t skipped = frame + done - m_chunk.start;
        const auto count = static_cast<unsigned int>(
            std::min<std::int64_t>(frameCount - done, m_chunk.frames - skipped));
        std::memcpy(buffer + done * size, m_chunk.bytes + static_cast<std::size_t>(skipped) * size,
                    count * size);
        done += count;
    }
    return done;
}

bool SoundTrack::Open() {
    if (!m_opened) {
        m_opened = true;
        m_stream = av::SoundStream::Open(m_path, m_ordinal);
        const av::SoundFormat wanted{AV_SAMPLE_FMT_S16, Format().sampleRate(),
                                     Format().channelCount(), 0};
        m_sound = m_stream != nullptr ? av::ConvertedSound::Create(*m_stream, wanted) : nullptr;
        if (m_sound != nullptr) {
            m_begin = FrameAt(m_stream->Facts().start, wanted.rate);
        }
    }
    return m_sound != nullptr;
}

// Has the chunk be one with this frame in it. False where there is none.
bool SoundTrack::HasFrame(std::int64_t frame) {
    const std::int64_t end = m_chunk.start + m_chunk.frames;
    if (frame >= m_chunk.start && frame < end) {
        return true;
    }
    m_chunk = {};
    m_sound->Seek(frame);
    return m_sound->Read(m_chunk) == av::SoundRead::Piece && m_chunk.start == frame;
}

} // namespace BREC
