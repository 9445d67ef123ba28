#include "platform/com/PropVariant.h"

#include <cmath>
#include <limits>

#include "platform/com/TaskMemory.h"

namespace {

constexpr LONGLONG kMost = std::numeric_limits<LONGLONG>::max();

HRESULT FromUnsigned(ULONGLONG number, LONGLONG* value) {
    if (number > static_cast<ULONGLONG>(kMost)) {
        return DISP_E_OVERFLOW;
    }
    *value = static_cast<LONGLONG>(number);
    return S_OK;
}

HRESULT FromDouble(double number, LONGLONG* value) {
    constexpr double kLimit = 9223372036854775808.0; // 2^63, the first that has no place
    const double rounded = std::round(number);
    if (!(rounded >= -kLimit && rounded < kLimit)) {
        return DISP_E_OVERFLOW;
    }
    *value = static_cast<LONGLONG>(rounded);
    return S_OK;
}

} // namespace

void PropVariantInit(PROPVARIANT* variant) {
    *variant = PROPVARIANT{};
}

HRESULT PropVariantClear(PROPVARIANT* variant) {
    if (variant == nullptr) {
        return S_OK;
    }
    if (variant->vt == VT_LPWSTR) {
        CoTaskMemFree(variant->pwszVal);
    } else if (variant->vt == VT_CLSID) {
        CoTaskMemFree(variant->puuid);
    }
    PropVariantInit(variant);
    return S_OK;
}

HRESULT PropVariantToInt64(REFPROPVARIANT variant, LONGLONG* value) {
    if (value == nullptr) {
        return E_POINTER;
    }
    *value = 0;
    switch (variant.vt) {
    case VT_I4:
        *value = variant.lVal;
        return S_OK;
    case VT_UI4:
        *value = variant.ulVal;
        return S_OK;
    case VT_BOOL:
        *value = variant.boolVal;
        return S_OK;
    case VT_I8:
        *value = variant.hVal.QuadPart;
        return S_OK;
    case VT_UI8:
        return FromUnsigned(variant.uhVal.QuadPart, value);
    case VT_R8:
        return FromDouble(variant.dblVal, value);
    default:
        return DISP_E_TYPEMISMATCH;
    }
}
