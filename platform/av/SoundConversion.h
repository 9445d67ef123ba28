// Sound in one form to sound in another: rate, channels, samples.
//
//     auto conversion = SoundConversion::Create(from, to);
//     conversion->Restart(0);
//     conversion->Convert(planes, frames, out);   // as often as there is input
//     conversion->Finish(out);                    // what its filter still holds
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/av/Handles.h"
#include "platform/av/SoundFacts.h"

namespace av {

// Frames of converted sound, one after the other.
struct SoundBytes {
    std::vector<std::uint8_t> bytes;
    std::int64_t frames = 0;
};

// Output frame m stands at the time m / rate, as input frame i does at its own rate. A conversion
// that is restarted `Reach()` input frames before a frame gives it bit for bit as one that runs
// from the start, however the input is cut into pieces.
//
// Channels are mixed by the usual coefficients: centre and surround at 1/√2, mono to both sides at
// 1/√2, the low frequencies left out.
//
// Thread-safety: none.
class SoundConversion {
public:
    // `to` is packed; a layout of 0 is the usual one for the number of channels. Null where one of
    // them is not served.
    static std::unique_ptr<SoundConversion> Create(const SoundFormat& from, const SoundFormat& to);

    // Input frames that a restart has to stand on whole multiples of.
    std::int64_t Step() const { return m_step; }

    // Input frames that a frame of output can lean on before itself.
    std::int64_t Reach() const { return m_reach; }

    // The input frame to restart at so that output from `position` on is right; 0 or more.
    std::int64_t StartFor(std::int64_t position) const;

    // The output frame that stands where the input frame does, a multiple of Step().
    std::int64_t OutputAt(std::int64_t inputFrame) const;

    // Forgets what it holds; the next input frame is number `at`, a multiple of Step(). False when
    // memory is out.
    bool Restart(std::int64_t at = 0);

    // Puts what comes out behind what `out` has. `planes`: of the input, borrowed for the call;
    // null is silence. False on failure.
    bool Convert(const std::uint8_t* const* planes, int frames, SoundBytes& out);

    // Puts there what the filter holds: output stands where input has been. To be followed by
    // Restart.
    bool Finish(SoundBytes& out);

    // Bytes of input, plane by plane.
    using Planes = std::vector<std::vector<std::uint8_t>>;

    int OutputFrameBytes() const { return m_frameBytes; }

private:
    SoundConversion(const SoundFormat& from, const SoundFormat& to);

    bool Configure();
    std::size_t PlaneCount() const;
    int PlaneStride() const;
    int MostInPiece() const;
    std::vector<const std::uint8_t*> PlanesOf(const Planes& kept, int offset) const;
    int FramesIn(const Planes& kept) const;
    void Keep(const std::vector<const std::uint8_t*>& planes, int frames, Planes& kept) const;
    bool TakeOrKeep(const std::vector<const std::uint8_t*>& planes, int frames, SoundBytes& out);
    bool TakeBeginning(SoundBytes& out);
    bool Take(const std::vector<const std::uint8_t*>& planes, int frames, SoundBytes& out);
    bool ConvertBlock(SoundBytes& out);
    bool ConvertPiece(const std::uint8_t* const* planes, int frames, SoundBytes& out);
    bool FinishShort(SoundBytes& out);
    void MakeSilence();

    const SoundFormat m_from;
    const SoundFormat m_to;
    const std::int64_t m_step;
    const std::int64_t m_reach;
    const int m_frameBytes;
    SwrContextPtr m_context;
    std::vector<std::uint8_t> m_silence; // one plane of it

    // Between rates that have too many phases for a filter each, what FFmpeg makes where one piece
    // of input meets the next depends on where that is, in the last digits. So the pieces are
    // blocks that lie where they lie, whoever restarts where.
    const bool m_inBlocks;
    std::int64_t m_at = 0; // number of the next input frame
    Planes m_block;        // what has come of it

    // What has come since a restart at 0, until it is more than the filter reaches.
    Planes m_beginning;
    bool m_isBeginning = false;
};

} // namespace av
