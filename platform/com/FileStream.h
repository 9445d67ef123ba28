// A file as a stream. Stands for the stream functions of shlwapi.h.
#pragma once

#include "platform/com/Stream.h"

inline constexpr DWORD STGM_READ = 0x00000000;

// *stream: the regular file at `path`, for reading, at its start, with a reference for the caller;
// null on failure. STG_E_FILENOTFOUND where CreateFileW finds none; STG_E_INVALIDFUNCTION for any
// other mode than STGM_READ.
//
// Thread-safety: safe from any thread.
HRESULT SHCreateStreamOnFileW(LPCWSTR path, DWORD mode, IStream** stream);
