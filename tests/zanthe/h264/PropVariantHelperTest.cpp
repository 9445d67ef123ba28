#include "zanthe/h264/PropVariantHelper.h"

#include <limits>

#include <gtest/gtest.h>

#include "platform/com/TaskMemory.h"

namespace Zanthe {
namespace {

std::int64_t ValueOf(const PropVariantHelper& helper) {
    return helper;
}

TEST(PropVariantHelper, HoldsANumber) {
    PropVariantHelper helper(5);
    const tagPROPVARIANT* variant = helper;
    EXPECT_EQ(variant->vt, VT_I8);
    EXPECT_EQ(variant->hVal.QuadPart, 5);
    EXPECT_EQ(ValueOf(helper), 5);
    helper += 7;
    EXPECT_EQ(ValueOf(helper), 12);
    EXPECT_EQ(static_cast<tagPROPVARIANT*>(helper)->hVal.QuadPart, 12);
}

TEST(PropVariantHelper, EmptyIsZero) {
    PropVariantHelper helper;
    EXPECT_EQ(static_cast<tagPROPVARIANT*>(helper)->vt, VT_EMPTY);
    EXPECT_EQ(ValueOf(helper), 0);
    helper += -3;
    EXPECT_EQ(ValueOf(helper), -3);
    EXPECT_EQ(static_cast<tagPROPVARIANT*>(helper)->vt, VT_I8);
}

TEST(PropVariantHelper, ComparesAsNumbers) {
    EXPECT_TRUE(PropVariantHelper(5) == PropVariantHelper(5));
    EXPECT_FALSE(PropVariantHelper(5) == PropVariantHelper(6));
    EXPECT_TRUE(PropVariantHelper() == PropVariantHelper(0));
    PropVariantHelper other;
    tagPROPVARIANT* variant = other;
    variant->vt = VT_UI8;
    variant->uhVal.QuadPart = 5;
    EXPECT_TRUE(other == PropVariantHelper(5));
}

TEST(PropVariantHelper, WhatIsNoNumberIsZero) {
    PropVariantHelper helper;
    tagPROPVARIANT* variant = helper;
    variant->vt = VT_UI8;
    variant->uhVal.QuadPart = ~ULONGLONG{0};
    EXPECT_EQ(ValueOf(helper), 0);
}

// The sanitizer sees that what is owned is given back once.
TEST(PropVariantHelper, GivesBackWhatItOwns) {
    PropVariantHelper helper;
    tagPROPVARIANT* variant = helper;
    variant->vt = VT_LPWSTR;
    variant->pwszVal = static_cast<LPWSTR>(CoTaskMemAlloc(sizeof(wchar_t)));
    *variant->pwszVal = L'\0';
    helper += 1;
    EXPECT_EQ(ValueOf(helper), 1);
    variant->vt = VT_CLSID;
    variant->puuid = static_cast<GUID*>(CoTaskMemAlloc(sizeof(GUID)));
    EXPECT_EQ(sizeof(helper), sizeof(PROPVARIANT));
}

TEST(PropVariantHelper, SumsWrap) {
    PropVariantHelper helper(std::numeric_limits<std::int64_t>::max());
    helper += 1;
    EXPECT_EQ(ValueOf(helper), std::numeric_limits<std::int64_t>::min());
}

} // namespace
} // namespace Zanthe
