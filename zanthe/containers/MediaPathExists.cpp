#include "zanthe/containers/MediaPathExists.h"

#include <algorithm>
#include <cwctype>
#include <optional>
#include <vector>

#include "platform/win32/FileAttributes.h"
#include "zanthe/containers/StructuredStorage.h"

namespace {

constexpr std::wstring_view kMark = L".orirec!";

std::wstring LowerCase(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(), [](wchar_t character) {
        return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(character)));
    });
    return text;
}

// Whether the compound file has this member at its root; nothing where it is no compound file.
std::optional<bool> HasMember(const std::wstring& storagePath, const std::wstring& member) {
    Sorbutl::StructuredStorage storage;
    if (!storage.Open(storagePath)) {
        return std::nullopt;
    }
    std::vector<std::wstring> names;
    storage.EnumElementNames(names);
    return std::any_of(names.begin(), names.end(),
                       [&](const std::wstring& name) { return LowerCase(name) == member; });
}

bool FileExists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace

bool MediaPathExists(const std::wstring& path) {
    const std::wstring lowerCase = LowerCase(path);
    const std::size_t mark = lowerCase.find(kMark);
    if (mark == std::wstring::npos) {
        return FileExists(path);
    }
    // The file in its own letters: here folders tell capitals from small ones.
    const std::wstring storagePath = path.substr(0, mark + kMark.size() - 1);
    const std::wstring member = lowerCase.substr(mark + kMark.size());
    if (storagePath.find(L'\\') == std::wstring::npos) {
        return false;
    }
    const std::optional<bool> found =
        member.empty() ? std::nullopt : HasMember(storagePath, member);
    return found.has_value() ? *found : FileExists(path);
}
