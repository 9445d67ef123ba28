#include "zanthe/analysis/Extension.h"

#include <gtest/gtest.h>

namespace {

TEST(LowerExtension, TextBehindTheLastDotOfTheName) {
    EXPECT_EQ(LowerExtension(L"a.mp4"), L"mp4");
    EXPECT_EQ(LowerExtension(L"a.b.MoV"), L"mov");
    EXPECT_EQ(LowerExtension(L"d:\\x.y\\z.WMV"), L"wmv");
    EXPECT_EQ(LowerExtension(L"a."), L"");
    EXPECT_EQ(LowerExtension(L".mp4"), L"mp4");
}

TEST(LowerExtension, EmptyWithoutADotInTheName) {
    EXPECT_EQ(LowerExtension(L""), L"");
    EXPECT_EQ(LowerExtension(L"mp4"), L"");
    EXPECT_EQ(LowerExtension(L"d:\\x.y\\z"), L"");
    EXPECT_EQ(LowerExtension(L"x.y\\"), L"");
}

TEST(LowerExtension, AForwardSlashSeparatesNothing) {
    EXPECT_EQ(LowerExtension(L"d:/x/y.mp4"), L"mp4");
    EXPECT_EQ(LowerExtension(L"d:/x.y/z"), L"y/z");
}

TEST(LowerExtension, OnlyAsciiLettersHaveCase) {
    EXPECT_EQ(LowerExtension(L"a.AZ[@\u00C9\u212A"), L"az[@\u00C9\u212A");
}

TEST(LowerTextBehindLastDot, LooksAtTheWholePath) {
    EXPECT_EQ(LowerTextBehindLastDot(L"a.AVI"), L"avi");
    EXPECT_EQ(LowerTextBehindLastDot(L"d:\\x.y\\z"), L"y\\z");
    EXPECT_EQ(LowerTextBehindLastDot(L"a."), L"");
}

TEST(LowerTextBehindLastDot, IsThePathWithoutADot) {
    EXPECT_EQ(LowerTextBehindLastDot(L"AVI"), L"avi");
    EXPECT_EQ(LowerTextBehindLastDot(L""), L"");
}

TEST(LowerFileExtension, FromTheLastDotOfTheFileName) {
    EXPECT_EQ(LowerFileExtension(L"a.MP3"), L".mp3");
    EXPECT_EQ(LowerFileExtension(L"a.b.mp4"), L".mp4");
    EXPECT_EQ(LowerFileExtension(L"d:/x.y/z.Mov"), L".mov");
    EXPECT_EQ(LowerFileExtension(L"d:\\x.y\\z.Mov"), L".mov");
    EXPECT_EQ(LowerFileExtension(L"a."), L".");
    EXPECT_EQ(LowerFileExtension(L".mp3"), L".mp3");
}

TEST(LowerFileExtension, EmptyWithoutADotInTheFileName) {
    EXPECT_EQ(LowerFileExtension(L""), L"");
    EXPECT_EQ(LowerFileExtension(L"mp3"), L"");
    EXPECT_EQ(LowerFileExtension(L"d:/x.mp3/z"), L"");
    EXPECT_EQ(LowerFileExtension(L"d:\\x.mp3\\z"), L"");
    EXPECT_EQ(LowerFileExtension(L"x.mp3/"), L"");
}

TEST(EqualIgnoringCase, ComparesAsciiLettersWithoutCase) {
    EXPECT_TRUE(EqualIgnoringCase(L"Brec", L"bREC"));
    EXPECT_TRUE(EqualIgnoringCase(L"", L""));
    EXPECT_FALSE(EqualIgnoringCase(L"brec", L"bre"));
    EXPECT_FALSE(EqualIgnoringCase(L"bre", L"brec"));
    EXPECT_FALSE(EqualIgnoringCase(L"\u00E9", L"\u00C9"));
    EXPECT_FALSE(EqualIgnoringCase(L"[", L"{"));
}

} // namespace
