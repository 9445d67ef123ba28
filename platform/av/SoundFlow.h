// Sound that comes in pieces and is converted on its way, with ends in between.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/av/SoundConversion.h"

namespace av {

// Output frame m stands at the time m / rate after the first input frame. An end gives all frames
// that stand before the end of the input so far; what comes behind it goes on from there, as if
// there had been no end, but for the frames at the end, which could not know what follows.
//
// Thread-safety: none.
class SoundFlow {
public:
    // Both forms are packed. Null where there is no such conversion.
    static std::unique_ptr<SoundFlow> Create(const SoundFormat& from, const SoundFormat& to);

    // False on failure; Restart then makes it usable again.
    bool Put(const std::uint8_t* bytes, int frames);
    bool End();

    // Forgets everything; the next input is the first.
    bool Restart();

    std::int64_t Frames() const { return m_made.frames - m_given; } // ready to be taken

    // Number of the first of those.
    std::int64_t Position() const { return m_madeFrom + m_given; }

    // Takes at most `frames` to `bytes`, and answers how many.
    std::int64_t Take(std::uint8_t* bytes, std::int64_t frames);

    std::int64_t InputFrames() const { return m_inputFrames; } // since the restart

    int OutputFrameBytes() const { return m_conversion->OutputFrameBytes(); }

private:
    SoundFlow(const SoundFormat& from, std::unique_ptr<SoundConversion> conversion,
              const SoundFormat& to);

    bool GoOn();
    bool Convert(const std::uint8_t* bytes, int frames);
    void Remember(const std::uint8_t* bytes, int frames);
    void Keep(const SoundBytes& made);
    void DropGiven();

    const std::unique_ptr<SoundConversion> m_conversion;
    const SoundFormat m_from;
    const SoundFormat m_to;
    const int m_inputFrameBytes;
    std::vector<std::uint8_t> m_history; // the latest input, as much as going on needs
    std::int64_t m_inputFrames = 0;      // since the restart
    std::int64_t m_outputFrames = 0;     // that were made
    std::int64_t m_conversionAt = 0;     // number of the frame that the conversion gives next
    bool m_ended = false;                // the filter has been emptied
    SoundBytes m_made;
    std::int64_t m_madeFrom = 0; // number of its first frame
    std::int64_t m_given = 0;    // of those
};

} // namespace av
