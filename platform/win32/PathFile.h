// Whether something is at a path. Stands for PathFileExistsW of shlwapi.h.
#pragma once

#include "platform/win32/Types.h"

// TRUE for a file or folder, also by its path with backslashes, as win32::ExistingPath says; FALSE
// for null.
//
// Thread-safety: safe from any thread.
BOOL PathFileExistsW(LPCWSTR path);
