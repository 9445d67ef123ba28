#include "platform/win32/Version.h"

#include <gtest/gtest.h>

namespace {

constexpr DWORD AllFields = VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR;

ULONGLONG AtLeast(DWORD fields) {
    ULONGLONG mask = 0;
    for (const DWORD field : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR}) {
        if ((fields & field) != 0) {
            mask = VerSetConditionMask(mask, field, VER_GREATER_EQUAL);
        }
    }
    return mask;
}

bool IsAtLeast(DWORD major, DWORD minor, WORD servicePack, DWORD fields = AllFields) {
    const OSVERSIONINFOEXW wanted{sizeof(OSVERSIONINFOEXW), major, minor, servicePack};
    return VerifyVersionInfoW(&wanted, fields, AtLeast(fields)) != FALSE;
}

class Version : public testing::Test {
protected:
    ~Version() override { win32::SetSystemVersion({}); }
};

TEST_F(Version, TheLayerIsTen) {
    EXPECT_TRUE(IsAtLeast(10, 0, 0));
    EXPECT_TRUE(IsAtLeast(6, 2, 0));
    EXPECT_TRUE(IsAtLeast(6, 3, 1));
    EXPECT_FALSE(IsAtLeast(10, 0, 1));
    EXPECT_FALSE(IsAtLeast(10, 1, 0));
    EXPECT_FALSE(IsAtLeast(11, 0, 0));
}

TEST_F(Version, GreaterFieldsDecideFirst) {
    win32::SetSystemVersion({6, 2, 0});
    EXPECT_TRUE(IsAtLeast(6, 2, 0));
    EXPECT_TRUE(IsAtLeast(5, 9, 9));
    EXPECT_TRUE(IsAtLeast(6, 1, 9));
    EXPECT_FALSE(IsAtLeast(6, 2, 1));
    EXPECT_FALSE(IsAtLeast(6, 3, 0));
    EXPECT_FALSE(IsAtLeast(7, 0, 0));
    win32::SetSystemVersion({6, 1, 1});
    EXPECT_FALSE(IsAtLeast(6, 2, 0));
    EXPECT_TRUE(IsAtLeast(6, 1, 1));
}

TEST_F(Version, OnlyNamedFieldsCount) {
    win32::SetSystemVersion({6, 1, 0});
    EXPECT_TRUE(IsAtLeast(6, 9, 9, VER_MAJORVERSION));
    EXPECT_TRUE(IsAtLeast(99, 1, 9, VER_MINORVERSION));
    EXPECT_FALSE(IsAtLeast(0, 2, 0, VER_MINORVERSION));
    EXPECT_FALSE(IsAtLeast(0, 0, 1, VER_SERVICEPACKMAJOR));
}

TEST_F(Version, TakesTheSettingBack) {
    win32::SetSystemVersion({5, 0, 0});
    EXPECT_FALSE(IsAtLeast(6, 2, 0));
    win32::SetSystemVersion({});
    EXPECT_TRUE(IsAtLeast(6, 2, 0));
}

TEST_F(Version, ConditionsStandInThreeBitsEach) {
    EXPECT_EQ(VerSetConditionMask(0, VER_MINORVERSION, VER_GREATER_EQUAL), 0x3U);
    EXPECT_EQ(VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL), 0x18U);
    EXPECT_EQ(VerSetConditionMask(0, VER_SERVICEPACKMAJOR, VER_GREATER_EQUAL), 0x18000U);
    EXPECT_EQ(VerSetConditionMask(0x18, VER_MINORVERSION, VER_GREATER_EQUAL), 0x1BU);
    EXPECT_EQ(VerSetConditionMask(0x18, 0x80, VER_GREATER_EQUAL), 0x18U);
}

TEST_F(Version, RefusesWhatItCannotCompare) {
    const OSVERSIONINFOEXW old{sizeof(OSVERSIONINFOEXW), 1, 0, 0};
    constexpr BYTE equal = 1;
    EXPECT_FALSE(VerifyVersionInfoW(nullptr, VER_MAJORVERSION, AtLeast(VER_MAJORVERSION)));
    EXPECT_FALSE(VerifyVersionInfoW(&old, 0, AtLeast(AllFields)));
    EXPECT_FALSE(VerifyVersionInfoW(&old, VER_MAJORVERSION, AtLeast(VER_MINORVERSION)));
    EXPECT_FALSE(VerifyVersionInfoW(&old, VER_MAJORVERSION | 0x80, AtLeast(AllFields)));
    EXPECT_FALSE(VerifyVersionInfoW(&old, VER_MAJORVERSION,
                                    VerSetConditionMask(0, VER_MAJORVERSION, equal)));
    EXPECT_TRUE(VerifyVersionInfoW(&old, VER_MAJORVERSION, AtLeast(VER_MAJORVERSION)));
}

} // namespace
