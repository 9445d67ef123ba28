#include "platform/win32/PathFile.h"

#include <filesystem>
#include <system_error>

#include "platform/win32/Path.h"
#include "platform/win32/Text.h"

BOOL PathFileExistsW(LPCWSTR path) {
    if (path == nullptr) {
        return FALSE;
    }
    std::error_code unreachable;
    return std::filesystem::exists(win32::ExistingPath(win32::WideToUtf8(path)), unreachable)
               ? TRUE
               : FALSE;
}
