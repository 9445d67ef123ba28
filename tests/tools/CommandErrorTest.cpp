#include "tools/zanthe/CommandError.h"

#include <gtest/gtest.h>

using Program::CommandError;
using Program::OneLine;
using Program::Printable;

TEST(CommandError, NamesTheFileAndTheReason) {
    EXPECT_STREQ(CommandError("clip.mp3", "no such file").what(), "clip.mp3: no such file");
}

TEST(OneLine, KeepsText) {
    EXPECT_EQ(OneLine("Gr\xC3\xBC\xC3\x9F"
                      "e, \"clip\" ~"),
              "Gr\xC3\xBC\xC3\x9F"
              "e, \"clip\" ~");
}

TEST(OneLine, WritesControlCharactersOut) {
    EXPECT_EQ(OneLine("a\nb\x1b[2J\x7f"), "a\\x0ab\\x1b[2J\\x7f");
}

// Some terminals take U+009B for the start of a command.
TEST(OneLine, WritesTheUpperControlCharactersOut) {
    EXPECT_EQ(OneLine("a\xC2\x9B"
                      "b\xC2\x80\xC2\x9F\xC2\xA0"),
              "a\\xc2\\x9bb\\xc2\\x80\\xc2\\x9f\xC2\xA0");
}

TEST(OneLine, WritesWhatIsNoUtf8Out) {
    EXPECT_EQ(OneLine("\xFF.mov"), "\\xff.mov");
    EXPECT_EQ(OneLine("\x9B[2J"), "\\x9b[2J");
    EXPECT_EQ(OneLine("\xE2\x82"), "\\xe2\\x82");
    EXPECT_EQ(OneLine("\xC0\x80"), "\\xc0\\x80");
    EXPECT_EQ(OneLine("\xED\xA0\x80"), "\\xed\\xa0\\x80");
    EXPECT_EQ(OneLine("\xF4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
    EXPECT_EQ(OneLine("\xF0\x9F\x8E\xAC \xE2\x82\xAC"), "\xF0\x9F\x8E\xAC \xE2\x82\xAC");
}

TEST(Printable, KeepsPrintableAsciiButTheBackslash) {
    EXPECT_EQ(Printable("avc1 \\\xC3\xBC\x7F"), "avc1 \\x5c\\xc3\\xbc\\x7f");
}
