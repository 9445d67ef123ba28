// The number types of the platform's interfaces. Stands for windef.h, basetsd.h and winnt.h.
//
// Each has the width that the interfaces promise; long, which has not, is used nowhere.
#pragma once

#include <cstdint>

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = std::uint32_t;
using UINT8 = std::uint8_t;
using UINT32 = std::uint32_t;
using UINT64 = std::uint64_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using DWORDLONG = std::uint64_t;
using LPWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using LPDWORD = DWORD*;
using LPBYTE = BYTE*;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

union LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;

    LONGLONG QuadPart;
};

union ULARGE_INTEGER {
    struct {
        DWORD LowPart;
        DWORD HighPart;
    } u;

    ULONGLONG QuadPart;
};

using PLARGE_INTEGER = LARGE_INTEGER*;
