// A value of one of several types. Stands for propidl.h and propvarutil.h.
#pragma once

#include "platform/com/Unknown.h"

using VARTYPE = std::uint16_t;

enum VARENUM : VARTYPE {
    VT_EMPTY = 0,
    VT_I4 = 3,
    VT_R8 = 5,
    VT_BOOL = 11,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_LPWSTR = 31,
    VT_CLSID = 72,
};

// `vt` says which of the others holds.
struct tagPROPVARIANT { // NOLINT(readability-identifier-naming): settled
    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;

    union {
        LONG lVal;            // VT_I4
        ULONG ulVal;          // VT_UI4
        std::int16_t boolVal; // VT_BOOL: -1 or 0
        LARGE_INTEGER hVal;   // VT_I8
        ULARGE_INTEGER uhVal; // VT_UI8
        double dblVal;        // VT_R8
        LPWSTR pwszVal;       // VT_LPWSTR, owned, of CoTaskMemAlloc
        GUID* puuid;          // VT_CLSID, owned, of CoTaskMemAlloc
    };
};

using PROPVARIANT = tagPROPVARIANT;
using REFPROPVARIANT = const PROPVARIANT&;

// Makes it VT_EMPTY, whatever was there: for memory that holds no value yet.
void PropVariantInit(PROPVARIANT* variant);

// Gives back what the value owns and makes it VT_EMPTY. Null is left alone.
HRESULT PropVariantClear(PROPVARIANT* variant);

// *value: the number as a signed one of 64 bits; a double is rounded to the nearest, halves away
// from zero. DISP_E_TYPEMISMATCH where the value is no number and DISP_E_OVERFLOW where it
// has no place there; *value is 0 then.
HRESULT PropVariantToInt64(REFPROPVARIANT variant, LONGLONG* value);
