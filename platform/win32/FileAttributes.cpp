#include "platform/win32/FileAttributes.h"

#include <sys/stat.h>

#include "platform/win32/File.h"
#include "platform/win32/Path.h"
#include "platform/win32/Text.h"

DWORD GetFileAttributesW(LPCWSTR path) {
    struct stat status {};

    if (path == nullptr ||
        stat(win32::ExistingPath(win32::WideToUtf8(path)).c_str(), &status) != 0) {
        return INVALID_FILE_ATTRIBUTES;
    }
    return S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
}
