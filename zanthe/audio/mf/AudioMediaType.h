// Formats of sound as media types.
#pragma once

#include "platform/com/ComPtr.h"
#include "platform/mf/MediaType.h"
#include "zanthe/audio/mf/MFAudioSampleFormat.h"

namespace Zanthe {

// Whether the type says that all samples are of one size. Source readers are told so, transforms
// are not.
enum class SampleSizes { Fixed, Untold };

// Empty where there is no memory for it.
com::ComPtr<IMFMediaType> MakeAudioType(const MFAudioSampleFormat& format, SampleSizes sizes);

// What a stream of the type `native` is to be decoded to without a change of channels or rate:
// float where it is float, else integers, of 16 bits where it does not say how many. What it does
// not tell is 0.
MFAudioSampleFormat DecodedFormatOf(IMFMediaType& native);

} // namespace Zanthe
