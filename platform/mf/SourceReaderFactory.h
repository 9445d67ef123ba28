// Who makes source readers: this layer, unless a test puts somebody else in its place.
#pragma once

#include <functional>

#include "platform/mf/SourceReader.h"

namespace mf {

// Makes a reader as MFCreateSourceReaderFromURL does.
using SourceReaderFactory =
    std::function<HRESULT(LPCWSTR url, IMFAttributes* attributes, IMFSourceReader** reader)>;

// Has `factory` make all readers from now on and answers who did before; an empty one gives that
// back to the layer, and stands for it in the answer. For tests.
//
// Thread-safety: safe from any thread, as is the next. A call under way keeps whom it began with.
SourceReaderFactory SetSourceReaderFactory(SourceReaderFactory factory);

// Empty for the layer itself.
SourceReaderFactory CurrentSourceReaderFactory();

// The same for MFCreateSourceReaderFromMediaSource.
using MediaSourceReaderFactory = std::function<HRESULT(
    IMFMediaSource* source, IMFAttributes* attributes, IMFSourceReader** reader)>;
MediaSourceReaderFactory SetMediaSourceReaderFactory(MediaSourceReaderFactory factory);
MediaSourceReaderFactory CurrentMediaSourceReaderFactory();

} // namespace mf
