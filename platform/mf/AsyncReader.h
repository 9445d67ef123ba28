// The asynchronous face of a source reader.
#pragma once

#include "platform/mf/SourceReader.h"

namespace mf {

// *reader: one that asks `inner` on a thread of its own and has `callback` answered. Both are kept.
HRESULT CreateAsyncReader(IMFSourceReader* inner, IMFSourceReaderCallback* callback,
                          IMFSourceReader** reader);

} // namespace mf
