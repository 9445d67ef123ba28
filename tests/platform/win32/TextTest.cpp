#include "platform/win32/Text.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

using win32::Utf8ToWide;
using win32::WideToUtf8;

namespace {

TEST(Text, EmptyStaysEmpty) {
    EXPECT_EQ(Utf8ToWide(""), L"");
    EXPECT_EQ(WideToUtf8(L""), "");
}

TEST(Text, DecodesEveryLength) {
    EXPECT_EQ(Utf8ToWide("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC"), L"a\u00E9\u20AC\U0001F3AC");
}

TEST(Text, EncodesEveryLength) {
    EXPECT_EQ(WideToUtf8(L"a\u00E9\u20AC\U0001F3AC"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC");
}

TEST(Text, KeepsNulCharacters) {
    EXPECT_EQ(Utf8ToWide(std::string_view("a\0b", 3)), std::wstring(L"a\0b", 3));
    EXPECT_EQ(WideToUtf8(std::wstring_view(L"a\0b", 3)), std::string("a\0b", 3));
}

TEST(Text, FirstAndLastOfEachLength) {
    const struct {
        std::string_view utf8;
        wchar_t wide;
    } cases[] = {
        {"\x7F", 0x7F},
        {"\xC2\x80", 0x80},
        {"\xDF\xBF", 0x7FF},
        {"\xE0\xA0\x80", 0x800},
        {"\xED\x9F\xBF", 0xD7FF},
        {"\xEE\x80\x80", 0xE000},
        {"\xEF\xBF\xBF", 0xFFFF},
        {"\xF0\x90\x80\x80", 0x10000},
        {"\xF4\x8F\xBF\xBF", 0x10FFFF},
    };

    for (const auto& each : cases) {
        EXPECT_EQ(Utf8ToWide(each.utf8), std::wstring(1, each.wide));
        EXPECT_EQ(WideToUtf8(std::wstring(1, each.wide)), each.utf8);
    }
}

// Each byte of a malformed sequence is escaped by itself.
std::wstring Escaped(std::string_view bytes) {
    std::wstring wide;
    for (const char byte : bytes) {
        wide.push_back(static_cast<wchar_t>(0xDC00 + static_cast<unsigned char>(byte)));
    }
    return wide;
}

TEST(Text, EscapesWhatIsNotUtf8) {
    const std::string_view malformed[] = {
        "\x80",             // stray continuation
        "\xFF",             // never a lead
        "\xF8\x88\x80\x80", // five byte form
        "\xC3",             // cut off
        "\xE2\x82",         // cut off
        "\xF0\x9F\x8E",     // cut off
        "\xC0\xAF",         // overlong
        "\xE0\x9F\xBF",     // overlong
        "\xF0\x8F\xBF\xBF", // overlong
        "\xED\xA0\x80",     // encoded surrogate
        "\xED\xBF\xBF",     // encoded surrogate
        "\xF4\x90\x80\x80", // beyond U+10FFFF
    };
    for (const auto bytes : malformed) {
        EXPECT_EQ(Utf8ToWide(bytes), Escaped(bytes));
        EXPECT_EQ(WideToUtf8(Utf8ToWide(bytes)), bytes);
    }
}

TEST(Text, GoesOnBehindAMalformedByte) {
    EXPECT_EQ(Utf8ToWide("a\xE9z"), L"a" + Escaped("\xE9") + L"z");
    EXPECT_EQ(Utf8ToWide("\xE2\x82\xC3\xA9"), Escaped("\xE2\x82") + L"\u00E9");
}

TEST(Text, AnyBytesSurviveTheRoundTrip) {
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        std::string bytes(random() % 24, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(random());
        }
        ASSERT_EQ(WideToUtf8(Utf8ToWide(bytes)), bytes) << "string " << i << " of seed 7";
    }
}

TEST(Text, ReplacesWhatHasNoUtf8) {
    const wchar_t wide[] = {0xD800, 0xDC7F, 0xDD00, 0xDFFF, 0x110000, wchar_t(-1)};
    for (const wchar_t element : wide) {
        EXPECT_EQ(WideToUtf8(std::wstring(1, element)), "\xEF\xBF\xBD");
    }
}

} // namespace
