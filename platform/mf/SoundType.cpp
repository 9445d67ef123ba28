#include "platform/mf/SoundType.h"

#include "platform/mf/MediaFormats.h"
#include "platform/mf/NativeType.h"

namespace mf {

namespace {

constexpr UINT32 kHighestRate = 768000;
constexpr UINT32 kMostChannels = 8; // that there are usual layouts for

AVSampleFormat SampleOf(REFGUID subtype, UINT32 bits) {
    if (subtype == MFAudioFormat_Float) {
        return bits == 32 ? AV_SAMPLE_FMT_FLT : bits == 64 ? AV_SAMPLE_FMT_DBL : AV_SAMPLE_FMT_NONE;
    }
    if (subtype != MFAudioFormat_PCM) {
        return AV_SAMPLE_FMT_NONE;
    }
    switch (bits) {
    case 8:
        return AV_SAMPLE_FMT_U8;
    case 16:
        return AV_SAMPLE_FMT_S16;
    case 24:
    case 32:
        return AV_SAMPLE_FMT_S32;
    default:
        return AV_SAMPLE_FMT_NONE;
    }
}

bool IsWide(const SoundType& type) {
    return type.bits == 24;
}

} // namespace

std::optional<SoundType> ReadSoundType(IMFMediaType& type, const av::SoundFormat& own) {
    GUID major{};
    GUID subtype{};
    if (FAILED(type.GetMajorType(&major)) || major != MFMediaType_Audio ||
        FAILED(type.GetGUID(MF_MT_SUBTYPE, &subtype))) {
        return std::nullopt;
    }
    const UINT32 usualBits = subtype == MFAudioFormat_Float ? 32 : 16;
    const UINT32 bits = MFGetAttributeUINT32(&type, MF_MT_AUDIO_BITS_PER_SAMPLE, usualBits);
    const UINT32 channels =
        MFGetAttributeUINT32(&type, MF_MT_AUDIO_NUM_CHANNELS, static_cast<UINT32>(own.channels));
    const UINT32 rate =
        MFGetAttributeUINT32(&type, MF_MT_AUDIO_SAMPLES_PER_SECOND, static_cast<UINT32>(own.rate));
    const bool ownChannels = channels == static_cast<UINT32>(own.channels);
    SoundType sound;
    sound.format.sample = SampleOf(subtype, bits);
    if (sound.format.sample == AV_SAMPLE_FMT_NONE || rate == 0 || rate > kHighestRate ||
        channels == 0 || (channels > kMostChannels && !ownChannels)) {
        return std::nullopt;
    }
    sound.format.rate = static_cast<int>(rate);
    sound.format.channels = static_cast<int>(channels);
    sound.format.layout = ownChannels ? own.layout : 0;
    sound.bits = static_cast<int>(bits);
    return sound;
}

com::ComPtr<IMFMediaType> CompleteType(IMFMediaType& type, const SoundType& sound) {
    com::ComPtr<IMFMediaType> complete = CopyOf(type);
    const auto rate = static_cast<UINT32>(sound.format.rate);
    const auto frameBytes = static_cast<UINT32>(sound.FrameBytes());
    complete->SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, static_cast<UINT32>(sound.format.channels));
    complete->SetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, rate);
    complete->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, static_cast<UINT32>(sound.bits));
    complete->SetUINT32(MF_MT_AUDIO_BLOCK_ALIGNMENT, frameBytes);
    complete->SetUINT32(MF_MT_AUDIO_AVG_BYTES_PER_SECOND, frameBytes * rate);
    complete->SetUINT32(MF_MT_ALL_SAMPLES_INDEPENDENT, 1);
    return complete;
}

// Samples are little-endian: the lowest byte goes.
void Pack(const SoundType& type, std::vector<std::uint8_t>& bytes) {
    if (!IsWide(type)) {
        return;
    }
    const std::size_t samples = bytes.size() / 4;
    for (std::size_t i = 0; i < samples; ++i) {
        for (std::size_t byte = 0; byte < 3; ++byte) {
            bytes[3 * i + byte] = bytes[4 * i + 1 + byte];
        }
    }
    bytes.resize(3 * samples);
}

std::vector<std::uint8_t> Unpack(const SoundType& type, const std::uint8_t* bytes,
                                 std::size_t size) {
    if (!IsWide(type)) {
        return {bytes, bytes + size};
    }
    const std::size_t samples = size / 3;
    std::vector<std::uint8_t> wide(4 * samples);
    for (std::size_t i = 0; i < samples; ++i) {
        for (std::size_t byte = 0; byte < 3; ++byte) {
            wide[4 * i + 1 + byte] = bytes[3 * i + byte];
        }
    }
    return wide;
}

} // namespace mf
