// Files, opened for reading. Stands for the file calls of fileapi.h.
//
//     HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
//                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
//     if (file != INVALID_HANDLE_VALUE)
//         ... SetFilePointerEx, ReadFile ... CloseHandle(file);
//
// Thread-safety: safe from any thread; one handle serves one thread at a time, as it has one
// position. Any number of handles may be open on one file.
#pragma once

#include "platform/win32/Handle.h"
#include "platform/win32/Types.h"

using LPSECURITY_ATTRIBUTES = struct SECURITY_ATTRIBUTES*;
using LPOVERLAPPED = struct OVERLAPPED*;

inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD FILE_SHARE_READ = 0x00000001;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x00000080;
inline constexpr DWORD FILE_FLAG_RANDOM_ACCESS = 0x10000000;

inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;

// A handle on the regular file at `path`, positioned at its start; the caller's to give to
// CloseHandle. INVALID_HANDLE_VALUE when there is none or it cannot be read, and at once for
// whatever is no regular file: a folder, a device, and a pipe, on which nobody ever waits.
//
// A path with backslashes is looked for as win32::ExistingPath says. Only reading an existing file
// is offered: `access` is GENERIC_READ and `disposition` OPEN_EXISTING, else the call fails.
// `share`, `security`, `flags` and `templateFile` play no part: this system shares every file.
HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                   DWORD disposition, DWORD flags, HANDLE templateFile);

// Reads `byteCount` bytes from the position on, which moves by what was read. *bytesRead is less
// than byteCount only at the end of the file, which is no failure. FALSE, with *bytesRead 0 and the
// position unmoved, when the system cannot read or `file` is no file handle. `bytesRead` must be
// given; `overlapped` is null.
BOOL ReadFile(HANDLE file, void* buffer, DWORD byteCount, LPDWORD bytesRead,
              LPOVERLAPPED overlapped);

// Moves the position to `distance` bytes from the start, the current position or the end of the
// file; the new one comes back in *newPosition where that is not null. A position past the end is
// a position like any other. FALSE, with nothing moved, for one before the start or beyond 63 bits,
// for an unknown `method`, and where `file` is no file handle.
BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, PLARGE_INTEGER newPosition,
                      DWORD method);
