#include "zanthe/audio/mf/AudioMediaType.h"

#include "platform/mf/MediaFormats.h"

namespace Zanthe {

com::ComPtr<IMFMediaType> MakeAudioType(const MFAudioSampleFormat& format, SampleSizes sizes) {
    com::ComPtr<IMFMediaType> type;
    if (FAILED(MFCreateMediaType(type.Put()))) {
        return {};
    }
    // A setter fails for lack of memory alone; whoever gets the type then misses the value.
    type->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Audio);
    type->SetGUID(MF_MT_SUBTYPE, format.subtype);
    type->SetUINT32(MF_MT_AUDIO_AVG_BYTES_PER_SECOND, format.blockAlign * format.samplesPerSecond);
    type->SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, format.bitsPerSample);
    type->SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, format.channels);
    type->SetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, format.samplesPerSecond);
    type->SetUINT32(MF_MT_AUDIO_BLOCK_ALIGNMENT, format.blockAlign);
    type->SetUINT32(MF_MT_ALL_SAMPLES_INDEPENDENT, 1);
    if (sizes == SampleSizes::Fixed) {
        type->SetUINT32(MF_MT_FIXED_SIZE_SAMPLES, 1);
    }
    return type;
}

MFAudioSampleFormat DecodedFormatOf(IMFMediaType& native) {
    constexpr UINT32 usualBits = 16;
    GUID subtype{};
    const bool isFloat =
        SUCCEEDED(native.GetGUID(MF_MT_SUBTYPE, &subtype)) && subtype == MFAudioFormat_Float;
    MFAudioSampleFormat format;
    format.subtype = isFloat ? MFAudioFormat_Float : MFAudioFormat_PCM;
    format.channels = MFGetAttributeUINT32(&native, MF_MT_AUDIO_NUM_CHANNELS, 0);
    format.samplesPerSecond = MFGetAttributeUINT32(&native, MF_MT_AUDIO_SAMPLES_PER_SECOND, 0);
    format.bitsPerSample = MFGetAttributeUINT32(&native, MF_MT_AUDIO_BITS_PER_SAMPLE, usualBits);
    return format;
}

} // namespace Zanthe
