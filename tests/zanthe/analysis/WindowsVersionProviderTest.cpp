#include "zanthe/analysis/WindowsVersionProvider.h"

#include <gtest/gtest.h>

#include "platform/win32/Version.h"

namespace {

bool IsNewEnough(const win32::SystemVersion& version) {
    win32::SetSystemVersion(version);
    const bool answer = Zanthe::WindowsVersionProvider().IsWindows62OrLater();
    win32::SetSystemVersion({});
    return answer;
}

TEST(WindowsVersionProvider, SixTwoAndLater) {
    EXPECT_TRUE(IsNewEnough({6, 2, 0}));
    EXPECT_TRUE(IsNewEnough({6, 2, 1}));
    EXPECT_TRUE(IsNewEnough({6, 3, 0}));
    EXPECT_TRUE(IsNewEnough({10, 0, 0}));
    EXPECT_FALSE(IsNewEnough({6, 1, 9}));
    EXPECT_FALSE(IsNewEnough({5, 9, 0}));
    EXPECT_FALSE(IsNewEnough({0, 0, 0}));
}

TEST(WindowsVersionProvider, TheLayerCountsAsLater) {
    EXPECT_TRUE(Zanthe::WindowsVersionProvider().IsWindows62OrLater());
}

} // namespace
