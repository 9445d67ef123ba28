// The sound of a file in a form of the caller's choice, from any frame on.
//
//     auto sound = ConvertedSound::Open(path, 0, {AV_SAMPLE_FMT_FLT, 44100, 2, 0});
//     sound->Seek(44100);
//     SoundChunk chunk;
//     while (sound->Read(chunk) == SoundRead::Piece) { ... } // the first starts at frame 44100
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/av/SoundConversion.h"
#include "platform/av/SoundStream.h"

namespace av {

struct SoundChunk {
    std::int64_t start = 0;              // frame number of the first, at the rate asked for
    std::int64_t frames = 0;             // at least 1
    const std::uint8_t* bytes = nullptr; // packed; valid until the next call
};

// The same number gives the same frame, bit for bit, whatever was read before.
//
// Thread-safety: none.
class ConvertedSound {
public:
    // `stream` is borrowed, outlives this, and nobody else moves it. `to` as in SoundConversion.
    // Null where there is no such conversion.
    static std::unique_ptr<ConvertedSound> Create(SoundStream& stream, const SoundFormat& to);

    // The next Read begins with that frame; with the first where it is negative.
    void Seek(std::int64_t frame);

    SoundRead Read(SoundChunk& chunk);

    int FrameBytes() const { return m_conversion->OutputFrameBytes(); }

private:
    ConvertedSound(SoundStream& stream, std::unique_ptr<SoundConversion> conversion)
        : m_stream(stream)
        , m_conversion(std::move(conversion)) {}

    bool Begin();
    bool Feed(const SoundPiece& piece);
    bool ConvertOddFrame(const SoundPiece& piece);
    std::vector<const std::uint8_t*> Separate(const SoundBytes& packed, const SoundFormat& format);
    bool Give(SoundChunk& chunk);

    SoundStream& m_stream;
    const std::unique_ptr<SoundConversion> m_conversion;
    std::unique_ptr<SoundConversion> m_unifier; // of frames in another form than the stream's
    SoundFormat m_unifies;                      // which form that is
    std::vector<std::uint8_t> m_planes;         // what it made, taken apart
    SoundBytes m_made;                          // given with the latest Read, or to be given
    std::int64_t m_madeFrom = 0;                // frame number of its first
    std::int64_t m_rightFrom = 0;               // before it the filter had not heard enough
    std::int64_t m_next = 0;                    // the next to be given
    bool m_running = false;                     // the conversion leads there
    bool m_finished = false;                    // and has come to the end
};

} // namespace av
