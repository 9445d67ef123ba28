// Which system this is. Stands for VerifyVersionInfoW of winbase.h and its types in winnt.h.
//
//     OSVERSIONINFOEXW wanted{};
//     wanted.dwMajorVersion = 6;
//     const DWORDLONG atLeast = VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL);
//     if (VerifyVersionInfoW(&wanted, VER_MAJORVERSION, atLeast)) ...
//
// The layer answers as version 10.0 without a service pack.
//
// Thread-safety: safe from any thread.
#pragma once

#include "platform/win32/Types.h"

struct OSVERSIONINFOEXW {
    DWORD dwOSVersionInfoSize; // sizeof(OSVERSIONINFOEXW)
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    WORD wServicePackMajor;
};

inline constexpr DWORD VER_MINORVERSION = 0x01;
inline constexpr DWORD VER_MAJORVERSION = 0x02;
inline constexpr DWORD VER_SERVICEPACKMAJOR = 0x20;

inline constexpr BYTE VER_GREATER_EQUAL = 3;

// `mask` with the condition for the field that `typeMask` names, to be handed to
// VerifyVersionInfoW. The condition of a field is set once; a field that is not one of the three
// above adds nothing.
ULONGLONG VerSetConditionMask(ULONGLONG mask, DWORD typeMask, BYTE condition);

// Whether the system meets `wanted` in the fields that `typeMask` names, each by its condition in
// `conditionMask`. The fields count as one number: the major version decides, and a lesser field
// only where all above it are equal, so that 10.0 is later than 6.2.
//
// FALSE also where a field is named that is none of the three above, where one has no condition or
// one other than VER_GREATER_EQUAL, and where none is named or `wanted` is null.
BOOL VerifyVersionInfoW(const OSVERSIONINFOEXW* wanted, DWORD typeMask, DWORDLONG conditionMask);

namespace win32 {

struct SystemVersion {
    DWORD major = 10;
    DWORD minor = 0;
    WORD servicePack = 0;
};

// Answers as this version from now on; SetSystemVersion({}) takes it back. For tests.
void SetSystemVersion(const SystemVersion& version);

} // namespace win32
