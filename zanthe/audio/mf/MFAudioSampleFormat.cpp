#include "zanthe/audio/mf/MFAudioSampleFormat.h"

#include "platform/mf/MediaFormats.h"
#include "zanthe/audio/mf/CanonicalFormat.h"

namespace Zanthe {

MFAudioSampleFormat MFAudioSampleFormat::CreateCanonical() {
    constexpr std::uint32_t channels = 2;
    constexpr std::uint32_t bits = 32;
    return {MFAudioFormat_Float, channels, CanonicalRate, bits, CanonicalBlockAlign};
}

const MFAudioSampleFormat& CanonicalFormat() {
    static const MFAudioSampleFormat format = MFAudioSampleFormat::CreateCanonical();
    return format;
}

} // namespace Zanthe
