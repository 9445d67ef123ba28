#include "tools/zanthe/CommandError.h"

#include <gtest/gtest.h>

using Program::CommandError;
using Program::OneLine;

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
