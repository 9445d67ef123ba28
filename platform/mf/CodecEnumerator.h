// Who knows the codecs: this layer, unless a test puts somebody else in its place.
#pragma once

#include <functional>

#include "platform/mf/Activate.h"

namespace mf {

// Names codecs as MFTEnumEx does; *activates is null and *count 0 when it is called.
using CodecEnumerator = std::function<HRESULT(
    REFGUID category, UINT32 flags, const MFT_REGISTER_TYPE_INFO* input,
    const MFT_REGISTER_TYPE_INFO* output, IMFActivate*** activates, UINT32* count)>;

// Has `enumerator` answer MFTEnumEx from now on and answers who did before; an empty one gives that
// back to the layer, and stands for it in the answer. For tests.
//
// Thread-safety: safe from any thread, as is the next. A call under way keeps whom it began with.
CodecEnumerator SetCodecEnumerator(CodecEnumerator enumerator);

// Empty for the layer itself.
CodecEnumerator CurrentCodecEnumerator();

} // namespace mf
