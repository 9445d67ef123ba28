// A caller's bytes as a stream. Stands for the memory streams of shlwapi.h.
#pragma once

#include "platform/com/Stream.h"

// A stream for reading, at its start, over a copy of the `byteCount` bytes at `bytes`, with a
// reference for the caller. Null where there is no memory, and for no bytes that are counted. Of
// zero bytes, an empty one.
//
// Thread-safety: safe from any thread.
IStream* SHCreateMemStream(const BYTE* bytes, UINT byteCount);
