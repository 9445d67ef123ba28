#include "zanthe/analysis/Extension.h"

#include <algorithm>

namespace {

wchar_t LowerLetter(wchar_t letter) {
    return letter >= L'A' && letter <= L'Z' ? static_cast<wchar_t>(letter - L'A' + L'a') : letter;
}

} // namespace

std::wstring LowerCase(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(), LowerLetter);
    return text;
}

bool EqualIgnoringCase(std::wstring_view one, std::wstring_view other) {
    const auto same = [](wchar_t a, wchar_t b) { return LowerLetter(a) == LowerLetter(b); };
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), same);
}

std::wstring LowerExtension(const std::wstring& path) {
    // Without a backslash npos + 1 is 0, the whole path.
    const std::wstring name = path.substr(path.rfind(L'\\') + 1);
    const std::size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : LowerCase(name.substr(dot + 1));
}

std::wstring LowerTextBehindLastDot(const std::wstring& path) {
    return LowerCase(path.substr(path.rfind(L'.') + 1));
}

std::wstring LowerFileExtension(const std::wstring& path) {
    const std::wstring name = path.substr(path.find_last_of(L"\\/") + 1);
    const std::size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : LowerCase(name.substr(dot));
}
