#include "platform/mf/NativeType.h"

#include <new>

#include "platform/mf/CodecSubtypes.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/SoundSubtypes.h"

namespace mf {

namespace {

com::ComPtr<IMFMediaType> NewType() {
    com::ComPtr<IMFMediaType> type;
    if (FAILED(MFCreateMediaType(type.Put()))) {
        throw std::bad_alloc();
    }
    return type;
}

void SetRatio(IMFMediaType& type, REFGUID key, AVRational ratio) {
    MFSetAttributeRatio(&type, key, static_cast<UINT32>(ratio.num), static_cast<UINT32>(ratio.den));
}

void DescribeVideo(IMFMediaType& type, const av::VideoFacts& facts, const std::string& container) {
    type.SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
    type.SetGUID(MF_MT_SUBTYPE, SubtypeOf(facts, container));
    if (facts.width > 0 && facts.height > 0) {
        MFSetAttributeSize(&type, MF_MT_FRAME_SIZE, static_cast<UINT32>(facts.width),
                           static_cast<UINT32>(facts.height));
    }
    if (facts.frameRate.num > 0) {
        SetRatio(type, MF_MT_FRAME_RATE, facts.frameRate);
    }
    // Square pixels are what a type without it has, and what most files are silent about.
    if (facts.pixelAspect.num != facts.pixelAspect.den) {
        SetRatio(type, MF_MT_PIXEL_ASPECT_RATIO, facts.pixelAspect);
    }
    if (!facts.sequenceHeader.empty()) {
        type.SetBlob(MF_MT_MPEG_SEQUENCE_HEADER, facts.sequenceHeader.data(),
                     static_cast<UINT32>(facts.sequenceHeader.size()));
    }
    if (facts.rotation != 0) {
        type.SetUINT32(MF_MT_VIDEO_ROTATION, static_cast<UINT32>(facts.rotation));
    }
}

// Whole bytes: a type says how much room a sample takes.
UINT32 BitsOf(const av::FileStream& stream) {
    const int bits = (stream.bitsPerSample + 7) / 8 * 8;
    return stream.bitsPerSample < 8 || bits > 64 ? 0 : static_cast<UINT32>(bits);
}

void DescribeSound(IMFMediaType& type, const av::FileStream& stream) {
    const auto channels = static_cast<UINT32>(stream.channels);
    const auto rate = static_cast<UINT32>(stream.sampleRate);
    const UINT32 bits = BitsOf(stream);
    type.SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Audio);
    type.SetGUID(MF_MT_SUBTYPE, SoundSubtypeOf(stream));
    type.SetUINT32(MF_MT_AUDIO_NUM_CHANNELS, channels);
    type.SetUINT32(MF_MT_AUDIO_SAMPLES_PER_SECOND, rate);
    if (bits > 0) {
        type.SetUINT32(MF_MT_AUDIO_BITS_PER_SAMPLE, bits);
    }
    if (stream.layout != 0 && stream.layout >> 32 == 0) {
        type.SetUINT32(MF_MT_AUDIO_CHANNEL_MASK, static_cast<UINT32>(stream.layout));
    }
    if (IsSoundInMemory(stream)) {
        const UINT32 frameBytes = bits / 8 * channels;
        type.SetUINT32(MF_MT_AUDIO_BLOCK_ALIGNMENT, frameBytes);
        type.SetUINT32(MF_MT_AUDIO_AVG_BYTES_PER_SECOND, frameBytes * rate);
        type.SetUINT32(MF_MT_ALL_SAMPLES_INDEPENDENT, 1);
    }
}

} // namespace

com::ComPtr<IMFMediaType> NativeTypeOf(const av::FileStream& stream, const std::string& container) {
    com::ComPtr<IMFMediaType> type = NewType();
    if (stream.kind == av::TrackKind::Video) {
        DescribeVideo(*type, stream.video, container);
    } else {
        DescribeSound(*type, stream);
    }
    return type;
}

com::ComPtr<IMFMediaType> CopyOf(IMFMediaType& type) {
    com::ComPtr<IMFMediaType> copy = NewType();
    if (FAILED(type.CopyAllItems(copy.Get()))) {
        throw std::bad_alloc();
    }
    return copy;
}

} // namespace mf
