// Identifiers of classes, interfaces and formats. Stands for guiddef.h.
#pragma once

#include <cstdint>

// Written as {Data1-Data2-Data3-Data4[0..1]-Data4[2..7]}. The first three fields are numbers in the
// machine's byte order, the last eight are bytes as written.
struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];

    friend constexpr bool operator==(const GUID&, const GUID&) = default;
};

static_assert(sizeof(GUID) == 16, "files hold it as 16 bytes without a gap");

using REFGUID = const GUID&;

// None at all; where a time format is asked for, units of 100 ns.
inline constexpr GUID GUID_NULL{};

// A GUID that names a class.
using CLSID = GUID;
using REFCLSID = const CLSID&;
