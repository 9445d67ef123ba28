#include "platform/av/ConvertedSound.h"

#include <algorithm>
#include <utility>

extern "C" {
#include <libavutil/samplefmt.h>
}

namespace av {

namespace {

// The planes of a frame from `offset` on.
std::vector<const std::uint8_t*> PlanesOf(const AVFrame& frame, int offset) {
    const auto sample = static_cast<AVSampleFormat>(frame.format);
    const bool planar = av_sample_fmt_is_planar(sample) != 0;
    const int channels = frame.ch_layout.nb_channels;
    const std::ptrdiff_t stride =
        std::ptrdiff_t{av_get_bytes_per_sample(sample)} * (planar ? 1 : channels);
    std::vector<const std::uint8_t*> planes(static_cast<std::size_t>(planar ? channels : 1));
    for (std::size_t i = 0; i < planes.size(); ++i) {
        planes[i] = frame.extended_data[i] + stride * offset;
    }
    return planes;
}

} // namespace

std::unique_ptr<ConvertedSound> ConvertedSound::Create(SoundStream& stream, const SoundFormat& to) {
    auto conversion = SoundConversion::Create(stream.Facts().format, to);
    return conversion == nullptr
               ? nullptr
               : std::unique_ptr<ConvertedSound>(new ConvertedSound(stream, std::move(conversion)));
}

void ConvertedSound::Seek(std::int64_t frame) {
    constexpr std::int64_t kMost = std::int64_t{1} << 50;
    frame = std::clamp<std::int64_t>(frame, 0, kMost);
    m_running = m_running && frame >= std::max(m_madeFrom, m_goodFrom) &&
                frame <= m_madeFrom + m_made.frames;
    m_next = frame;
}

bool ConvertedSound::Begin() {
    const std::int64_t start = m_conversion->StartFor(m_next);
    m_stream.Seek(start);
    m_made = {};
    m_madeFrom = m_conversion->OutputAt(start);
    m_goodFrom = start == 0 ? 0 : m_next;
    m_finished = false;
    m_running = m_conversion->Restart(start);
    return m_running;
}

bool ConvertedSound::Give(SoundChunk& chunk) {
    const std::int64_t end = m_madeFrom + m_made.frames;
    if (end <= m_next) {
        m_madeFrom = end;
        m_made.bytes.clear();
        m_made.frames = 0;
        return false;
    }
    const std::int64_t offset = m_next - m_madeFrom;
    chunk = {m_next, end - m_next, m_made.bytes.data() + offset * FrameBytes()};
    m_next = end;
    return true;
}

SoundRead ConvertedSound::Read(SoundChunk& chunk) {
    if (!m_running && !Begin()) {
        return SoundRead::Failed;
    }
    while (!Give(chunk)) {
        if (m_finished) {
            return SoundRead::End;
        }
        SoundPiece piece;
        const SoundRead read = m_stream.Read(piece);
        if (read == SoundRead::Failed) {
            m_running = false;
            return read;
        }
        m_finished = read == SoundRead::End;
        if (!(m_finished ? m_conversion->Finish(m_made) : Feed(piece))) {
            m_running = false;
            return SoundRead::Failed;
        }
    }
    return SoundRead::Piece;
}

bool ConvertedSound::Feed(const SoundPiece& piece) {
    if (piece.frame == nullptr) {
        return m_conversion->Convert(nullptr, piece.frames, m_made);
    }
    if (FormatOf(*piece.frame) != m_stream.Facts().format) {
        return ConvertOddFrame(piece);
    }
    return m_conversion->Convert(PlanesOf(*piece.frame, piece.offset).data(), piece.frames, m_made);
}

// The frames as `format` has them, planes or not.
std::vector<const std::uint8_t*> ConvertedSound::Separate(const SoundBytes& packed,
                                                          const SoundFormat& format) {
    if (av_sample_fmt_is_planar(format.sample) == 0) {
        return {packed.bytes.data()};
    }
    const auto size = static_cast<std::size_t>(av_get_bytes_per_sample(format.sample));
    const auto channels = static_cast<std::size_t>(format.channels);
    const auto frames = static_cast<std::size_t>(packed.frames);
    m_planes.resize(packed.bytes.size());
    std::vector<const std::uint8_t*> planes;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        std::uint8_t* plane = m_planes.data() + channel * frames * size;
        for (std::size_t i = 0; i < frames; ++i) {
            std::copy_n(packed.bytes.data() + (i * channels + channel) * size, size,
                        plane + i * size);
        }
        planes.push_back(plane);
    }
    return planes;
}

// Broadcasts change from stereo to 5.1 and back: such frames take the stream's form first.
bool ConvertedSound::ConvertOddFrame(const SoundPiece& piece) {
    const SoundFormat form = FormatOf(*piece.frame);
    if (m_unifier == nullptr || m_unifies != form) {
        SoundFormat packed = m_stream.Facts().format;
        packed.sample = av_get_packed_sample_fmt(packed.sample);
        m_unifier = SoundConversion::Create(form, packed);
        m_unifies = form;
    }
    SoundBytes packed;
    if (m_unifier == nullptr ||
        !m_unifier->Convert(PlanesOf(*piece.frame, piece.offset).data(), piece.frames, packed)) {
        return m_conversion->Convert(nullptr, piece.frames, m_made);
    }
    return m_conversion->Convert(Separate(packed, m_stream.Facts().format).data(), piece.frames,
                                 m_made);
}

} // namespace av
