// Samples of a sound stream, decoded and converted.
#pragma once

#include <memory>

#include "platform/av/ConvertedSound.h"
#include "platform/mf/ISampleSource.h"
#include "platform/mf/SoundType.h"

namespace mf {

// Frame f of the sound has the time start + f / rate, rounded to units of 100 ns; samples follow
// each other without a gap, and silence stands where the file has none.
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
    HRESULT MakeSample(const av::SoundChunk& chunk, com::ComPtr<IMFSample>& sample) const;

    const std::unique_ptr<av::ConvertedSound> m_sound;
    const SoundType m_type;
    const LONGLONG m_start; // time of frame 0
};

} // namespace mf
