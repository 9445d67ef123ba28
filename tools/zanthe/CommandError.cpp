#include "tools/zanthe/CommandError.h"

namespace Program {

CommandError::CommandError(std::string_view subject, std::string_view reason)
    : std::runtime_error(std::string(subject) + ": " + std::string(reason))
    , m_subjectLength(subject.size() + 2) {}

std::string OneLine(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string line;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7F) {
            line += "\\x";
            line += digits[byte >> 4];
            line += digits[byte & 15];
        } else {
            line += character;
        }
    }
    return line;
}

} // namespace Program
