#include "platform/win32/Path.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace win32 {

namespace {

// A path that cannot be looked at (a folder without permission, a name too long) is not there.
bool SomethingIsAt(const std::string& path) {
    std::error_code unreachable;
    return std::filesystem::exists(path, unreachable);
}

} // namespace

std::string ExistingPath(const std::string& utf8) {
    if (utf8.find('\\') == std::string::npos || SomethingIsAt(utf8)) {
        return utf8;
    }
    std::string turned = utf8;
    std::replace(turned.begin(), turned.end(), '\\', '/');
    return SomethingIsAt(turned) ? turned : utf8;
}

} // namespace win32
