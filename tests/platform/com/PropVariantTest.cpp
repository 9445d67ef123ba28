#include "platform/com/PropVariant.h"

#include <cstring>
#include <limits>

#include <gtest/gtest.h>

#include "platform/com/TaskMemory.h"

namespace {

PROPVARIANT OfType(VARTYPE type) {
    PROPVARIANT variant;
    PropVariantInit(&variant);
    variant.vt = type;
    return variant;
}

TEST(PropVariant, BeginsEmpty) {
    PROPVARIANT variant;
    std::memset(&variant, 0xAA, sizeof variant);
    PropVariantInit(&variant);
    EXPECT_EQ(variant.vt, VT_EMPTY);
    static_assert(sizeof(PROPVARIANT) == 24); // as on any 64-bit system
    static_assert(VT_I8 == 20 && VT_UI8 == 21 && VT_UI4 == 19 && VT_LPWSTR == 31);
}

TEST(PropVariant, GivesNumbers) {
    LONGLONG value = 0;
    PROPVARIANT variant = OfType(VT_I8);
    variant.hVal.QuadPart = -5;
    EXPECT_EQ(PropVariantToInt64(variant, &value), S_OK);
    EXPECT_EQ(value, -5);
    variant = OfType(VT_UI4);
    variant.ulVal = 0xFFFFFFFF;
    EXPECT_EQ(PropVariantToInt64(variant, &value), S_OK);
    EXPECT_EQ(value, 0xFFFFFFFFLL);
    variant = OfType(VT_I4);
    variant.lVal = -3;
    EXPECT_EQ(PropVariantToInt64(variant, &value), S_OK);
    EXPECT_EQ(value, -3);
    variant = OfType(VT_R8);
    variant.dblVal = -2.5;
    EXPECT_EQ(PropVariantToInt64(variant, &value), S_OK);
    EXPECT_EQ(value, -3);
    variant = OfType(VT_BOOL);
    variant.boolVal = -1;
    EXPECT_EQ(PropVariantToInt64(variant, &value), S_OK);
    EXPECT_EQ(value, -1);
}

TEST(PropVariant, SaysWhatIsNoSuchNumber) {
    LONGLONG value = 1;
    EXPECT_EQ(PropVariantToInt64(OfType(VT_EMPTY), &value), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(PropVariantToInt64(OfType(VT_LPWSTR), &value), DISP_E_TYPEMISMATCH);
    PROPVARIANT variant = OfType(VT_UI8);
    variant.uhVal.QuadPart = std::numeric_limits<ULONGLONG>::max();
    EXPECT_EQ(PropVariantToInt64(variant, &value), DISP_E_OVERFLOW);
    variant = OfType(VT_R8);
    for (const double number :
         {1e300, -1e300, 9223372036854775808.0, std::numeric_limits<double>::quiet_NaN()}) {
        variant.dblVal = number;
        EXPECT_EQ(PropVariantToInt64(variant, &value), DISP_E_OVERFLOW) << number;
    }
    EXPECT_EQ(PropVariantToInt64(variant, nullptr), E_POINTER);
}

TEST(PropVariant, GivesBackWhatItOwns) {
    PROPVARIANT variant = OfType(VT_LPWSTR);
    variant.pwszVal = static_cast<LPWSTR>(CoTaskMemAlloc(4 * sizeof(wchar_t)));
    EXPECT_EQ(PropVariantClear(&variant), S_OK);
    EXPECT_EQ(variant.vt, VT_EMPTY);
    variant = OfType(VT_CLSID);
    variant.puuid = static_cast<GUID*>(CoTaskMemAlloc(sizeof(GUID)));
    EXPECT_EQ(PropVariantClear(&variant), S_OK);
    EXPECT_EQ(PropVariantClear(&variant), S_OK);
    EXPECT_EQ(PropVariantClear(nullptr), S_OK);
    CoTaskMemFree(nullptr);
}

} // namespace
