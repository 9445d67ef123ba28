// Samples of a sound stream, decoded and converted.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/av/ConvertedSound.h"
#include "platform/mf/ISampleSource.h"
#include "platform/mf/SoundType.h"

namespace mf {

// Frame f of the sound has the time start + f / rate, rounded to units of 100 ns; samples follow
// each other without a gap, and silence stands where the file has none.
//
// The first sample behind a seek is as short as the file has them. Samples then grow, up to some
// tenths of a second, while they are read on: each costs a turn of two threads, which for short
// ones is more than their decoding.
class SoundSamples final : public ISampleSource {
public:
    // `stream` is borrowed and outlives this; nobody else moves it meanwhile. Null where there is
    // no such conversion.
    static std::unique_ptr<SoundSamples> Create(av::SoundStream& stream, const SoundType& type);

    // ISampleSource
    HRESULT SetPosition(LONGLONG position) override;
    SampleRead Read() override;

    void Describe(IMFMediaType& /*type*/) const override {}

private:
    SoundSamples(std::unique_ptr<av::ConvertedSound> sound, const SoundType& type, LONGLONG start)
        : m_sound(std::move(sound))
        , m_type(type)
        , m_start(start) {}

    LONGLONG TimeOf(LONGLONG frame) const;
    LONGLONG FrameAt(LONGLONG time) const;
    void Gather();
    SampleRead GiveGathered();

    const std::unique_ptr<av::ConvertedSound> m_sound;
    const SoundType m_type;
    const LONGLONG m_start; // time of frame 0

    LONGLONG m_wanted = 0;             // frames that the next sample is to have at least
    std::vector<std::uint8_t> m_bytes; // gathered for the next sample
    LONGLONG m_from = 0;               // their first frame
    LONGLONG m_frames = 0;
    av::SoundRead m_last = av::SoundRead::Piece; // what stopped the gathering, if not a piece
};

} // namespace mf
