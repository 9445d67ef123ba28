// The transform of CLSID_CResamplerMediaObject.
#pragma once

#include "platform/com/Unknown.h"

namespace mf {

// *object: a new one as `iid`, with a reference for the caller; null on failure.
//
// It takes and gives MFAudioFormat_PCM and MFAudioFormat_Float of any rate and 1 to 8 channels.
// What it gives is what has come out by the time it is asked: as many whole frames as the buffer
// has room for. Output frames are numbered from the first input since it was made or flushed, and
// stand where input of that time does. DRAIN has it give what its filter still holds, up to the end
// of the input; input that comes then goes on where that stopped, with the numbers and the filter
// going on too.
HRESULT CreateResampler(REFIID iid, void** object);

} // namespace mf
