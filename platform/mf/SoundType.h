// What a media type says of sound in memory.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/av/SoundFacts.h"
#include "platform/com/ComPtr.h"
#include "platform/mf/MediaType.h"

namespace mf {

struct SoundType {
    av::SoundFormat format; // 24 bits are the upper ones of AV_SAMPLE_FMT_S32
    int bits = 0;           // of a sample as the type has it

    int FrameBytes() const { return bits / 8 * format.channels; }

    bool operator==(const SoundType&) const = default;
};

// Of MFAudioFormat_PCM with 8, 16, 24 or 32 bits or MFAudioFormat_Float with 32 or 64. Rate and
// channels that the type is silent about are those of `own`, bits 16 of PCM and 32 of floats. Empty
// for any other, and for what no conversion serves: more than 8 channels that `own` has not, a rate
// above 768 kHz.
std::optional<SoundType> ReadSoundType(IMFMediaType& type, const av::SoundFormat& own);

// A copy of the media type in which everything that says how the sound lies in memory is set.
com::ComPtr<IMFMediaType> CompleteType(IMFMediaType& type, const SoundType& sound);

// Makes samples of 32 bits into such of 24 where the type has these, and back.
void Pack(const SoundType& type, std::vector<std::uint8_t>& bytes);
std::vector<std::uint8_t> Unpack(const SoundType& type, const std::uint8_t* bytes,
                                 std::size_t size);

} // namespace mf
