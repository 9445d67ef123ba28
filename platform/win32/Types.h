// The number types of the platform's interfaces. Stands for windef.h and basetsd.h.
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
using ULONGLONG = std::uint64_t;
using DWORDLONG = std::uint64_t;
using LPCWSTR = const wchar_t*;
using LPDWORD = DWORD*;
using LPBYTE = BYTE*;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;
