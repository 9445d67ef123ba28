#include "platform/win32/Text.h"

#include <cstddef>

namespace win32 {

namespace {

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t FirstEscape = 0xDC80;
constexpr char32_t LastEscape = 0xDCFF;
constexpr char32_t EscapeBase = 0xDC00;

struct Sequence {
    std::size_t length; // bytes; 0 when the bytes are not well formed
    char32_t codePoint;
};

constexpr Sequence Malformed{0, 0};

unsigned char ByteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

bool IsSurrogate(char32_t codePoint) {
    return codePoint >= 0xD800 && codePoint <= 0xDFFF;
}

// How a lead byte begins: the length that it announces and the bits that it brings along.
Sequence LeadOf(unsigned char byte) {
    if (byte < 0x80) {
        return {1, byte};
    }
    if ((byte & 0xE0) == 0xC0) {
        return {2, byte & 0x1Fu};
    }
    if ((byte & 0xF0) == 0xE0) {
        return {3, byte & 0x0Fu};
    }
    if ((byte & 0xF8) == 0xF0) {
        return {4, byte & 0x07u};
    }
    return Malformed;
}

// A code point has one form only: the shortest.
bool IsShortestForm(const Sequence& sequence) {
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    return sequence.codePoint >= smallest[sequence.length];
}

Sequence SequenceAtStart(std::string_view text) {
    Sequence sequence = LeadOf(ByteAt(text, 0));
    if (sequence.length == 0 || sequence.length > text.size()) {
        return Malformed;
    }
    for (std::size_t i = 1; i < sequence.length; ++i) {
        const unsigned char byte = ByteAt(text, i);
        if ((byte & 0xC0) != 0x80) {
            return Malformed;
        }
        sequence.codePoint = sequence.codePoint << 6 | (byte & 0x3Fu);
    }
    const bool wellFormed = IsShortestForm(sequence) && !IsSurrogate(sequence.codePoint) &&
                            sequence.codePoint <= 0x10FFFF;
    return wellFormed ? sequence : Malformed;
}

void AppendUtf8(std::string& text, char32_t codePoint) {
    const auto append = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (codePoint < 0x80) {
        append(codePoint);
    } else if (codePoint < 0x800) {
        append(0xC0 | codePoint >> 6);
        append(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        append(0xE0 | codePoint >> 12);
        append(0x80 | (codePoint >> 6 & 0x3F));
        append(0x80 | (codePoint & 0x3F));
    } else {
        append(0xF0 | codePoint >> 18);
        append(0x80 | (codePoint >> 12 & 0x3F));
        append(0x80 | (codePoint >> 6 & 0x3F));
        append(0x80 | (codePoint & 0x3F));
    }
}

} // namespace

std::wstring Utf8ToWide(std::string_view utf8) {
    std::wstring wide;
    wide.reserve(utf8.size());
    while (!utf8.empty()) {
        Sequence sequence = SequenceAtStart(utf8);
        if (sequence.length == 0) {
            // One byte at a time: what follows a stray byte may well be text.
            sequence = {1, EscapeBase + ByteAt(utf8, 0)};
        }
        wide.push_back(static_cast<wchar_t>(sequence.codePoint));
        utf8.remove_prefix(sequence.length);
    }
    return wide;
}

std::string WideToUtf8(std::wstring_view wide) {
    std::string utf8;
    utf8.reserve(wide.size());
    for (const wchar_t element : wide) {
        const auto codePoint = static_cast<char32_t>(element);
        if (codePoint >= FirstEscape && codePoint <= LastEscape) {
            utf8.push_back(static_cast<char>(codePoint - EscapeBase));
        } else if (IsSurrogate(codePoint) || codePoint > 0x10FFFF) {
            AppendUtf8(utf8, Replacement);
        } else {
            AppendUtf8(utf8, codePoint);
        }
    }
    return utf8;
}

} // namespace win32
