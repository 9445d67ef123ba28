#include "platform/win32/IniFile.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// Each value as "[section] name = value".
std::vector<std::string> Read(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (const win32::IniValue& value : win32::ReadIni(stream)) {
        lines.push_back("[" + value.section + "] " + value.name + " = " + value.value);
    }
    return lines;
}

using Lines = std::vector<std::string>;

TEST(IniFile, KeepsTheOrderOfTheFile) {
    EXPECT_EQ(Read("a=1\n[s]\nb = 2\n[t]\na=3\nb=4\n"),
              (Lines{"[] a = 1", "[s] b = 2", "[t] a = 3", "[t] b = 4"}));
}

TEST(IniFile, NothingInNothing) {
    EXPECT_EQ(Read(""), Lines{});
    EXPECT_EQ(Read("\n   \n; only words\n# and more\n[s]\n"), Lines{});
}

TEST(IniFile, StripsBlanksCommentsAndLineEnds) {
    EXPECT_EQ(Read("[s]\r\n  a  =  b c \t; why\r\n"), Lines{"[s] a = b c"});
}

TEST(IniFile, LastLineNeedsNoEnd) {
    EXPECT_EQ(Read("[s]\na=b"), Lines{"[s] a = b"});
}

TEST(IniFile, ByteOrderMarkIsNoPartOfTheFirstLine) {
    EXPECT_EQ(Read("\xEF\xBB\xBF[s]\na=b\n"), Lines{"[s] a = b"});
    EXPECT_EQ(Read("\xEF\xBB\xBF"
                   "a=b\n"),
              Lines{"[] a = b"});
}

TEST(IniFile, SectionNamesAreWhole) {
    const std::string section = "HKEY_CURRENT_USER\\Software\\" + std::string(120, 'x');
    EXPECT_EQ(Read("[" + section + "]\na=b\n"), Lines{"[" + section + "] a = b"});
}

TEST(IniFile, SectionsThatShareTheirStartStayApart) {
    const std::string start(60, 'x');
    EXPECT_EQ(Read("[" + start + "1]\na=b\n[" + start + "2]\na=c\n"),
              (Lines{"[" + start + "1] a = b", "[" + start + "2] a = c"}));
}

TEST(IniFile, IndentedLineIsAValueOfItsOwn) {
    EXPECT_EQ(Read("[s]\na=b\n  c=d\n"), (Lines{"[s] a = b", "[s] c = d"}));
}

TEST(IniFile, LineThatIsNoValueIsLeftOut) {
    EXPECT_EQ(Read("[s]\nwords\na=b\n[open\nc=d\n"), (Lines{"[s] a = b", "[s] c = d"}));
}

TEST(IniFile, LongestLineAndOneBeyond) {
    const std::string longest = "a=" + std::string(196, 'x');
    EXPECT_EQ(Read(longest + "\nb=c\n"), (Lines{"[] a = " + std::string(196, 'x'), "[] b = c"}));
    EXPECT_EQ(Read(longest + "x\nb=c\n"), Lines{"[] b = c"});
}

TEST(IniFile, TailOfALongLineIsNoValue) {
    EXPECT_EQ(Read(std::string(300, 'x') + "\na=" + std::string(300, 'y') + "=z\nb=c\n"),
              Lines{"[] b = c"});
}

TEST(IniFile, NulBytesDoNotStopTheFile) {
    EXPECT_EQ(Read(std::string("a=b\0c\nd=e\n", 10)), (Lines{"[] a = b", "[] d = e"}));
}

} // namespace
