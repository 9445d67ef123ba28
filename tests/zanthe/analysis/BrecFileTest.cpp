#include "zanthe/analysis/BrecFile.h"

#include <gtest/gtest.h>

namespace {

TEST(HasBrecExtension, TheFileNameEndsInIt) {
    EXPECT_TRUE(HasBrecExtension("a.brec"));
    EXPECT_TRUE(HasBrecExtension("d:\\x\\a.BREC"));
    EXPECT_TRUE(HasBrecExtension("/x/a.mp4.bReC"));
    EXPECT_TRUE(HasBrecExtension(".brec"));
}

TEST(HasBrecExtension, NothingElseDoes) {
    EXPECT_FALSE(HasBrecExtension(""));
    EXPECT_FALSE(HasBrecExtension("brec"));
    EXPECT_FALSE(HasBrecExtension("a.brecs"));
    EXPECT_FALSE(HasBrecExtension("a.brec/b"));
    EXPECT_FALSE(HasBrecExtension("a.brec\\b"));
    EXPECT_FALSE(HasBrecExtension("a.brec!video0.mp4"));
}

} // namespace
