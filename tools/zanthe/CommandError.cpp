#include "tools/zanthe/CommandError.h"

#include <algorithm>

namespace Program {

namespace {

std::string Escaped(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char each : bytes) {
        const auto byte = static_cast<unsigned char>(each);
        text += "\\x";
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

// How many bytes the UTF-8 character at the start of `text` has; 0 where none stands there.
// REQUIRES: text is not empty.
std::size_t LengthOfCharacter(std::string_view text) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = at(0);
    if (first < 0x80) {
        return 1;
    }
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 0 || first > 0xF4 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    // Forms that are longer than they need be, surrogates, and what is beyond the last character.
    const unsigned char second = at(1);
    const bool refused = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                         (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return refused ? 0 : length;
}

// Those of ASCII, and the 32 above it, of which some terminals take one for the start of a command.
bool IsControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) {
        return first < 0x20 || first == 0x7F;
    }
    return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

} // namespace

CommandError::CommandError(std::string_view subject, std::string_view reason)
    : std::runtime_error(std::string(subject) + ": " + std::string(reason))
    , m_subjectLength(subject.size() + 2) {}

std::string OneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const std::size_t length = LengthOfCharacter(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        line += length == 0 || IsControl(character) ? Escaped(character) : std::string(character);
        text.remove_prefix(character.size());
    }
    return line;
}

std::string Printable(std::string_view text) {
    std::string printable;
    for (const char each : text) {
        const bool plain = each >= ' ' && each <= '~' && each != '\\';
        printable += plain ? std::string(1, each) : Escaped({&each, 1});
    }
    return printable;
}

} // namespace Program
