// Whether a file is there and what it is. Stands for GetFileAttributesW of fileapi.h.
#pragma once

#include "platform/win32/Types.h"

inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x00000010;

// FILE_ATTRIBUTE_DIRECTORY for a folder, FILE_ATTRIBUTE_NORMAL (File.h) for anything else, and
// INVALID_FILE_ATTRIBUTES where there is nothing. A path with backslashes is looked for as
// win32::ExistingPath says.
//
// Thread-safety: safe from any thread.
DWORD GetFileAttributesW(LPCWSTR path);
