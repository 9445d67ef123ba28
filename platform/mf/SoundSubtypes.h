// The subtype by which a file's sound stream is told.
#pragma once

#include "platform/av/FileFacts.h"
#include "platform/com/Guid.h"

namespace mf {

// MFAudioFormat_PCM and MFAudioFormat_Float for samples as they are; else that of the codec, or its
// WAVE_FORMAT tag, or the four characters of its name.
GUID SoundSubtypeOf(const av::FileStream& stream);

// Whether the stream holds samples as they are.
bool IsSoundInMemory(const av::FileStream& stream);

} // namespace mf
