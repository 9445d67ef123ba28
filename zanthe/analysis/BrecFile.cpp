#include "zanthe/analysis/BrecFile.h"

#include "platform/win32/Text.h"
#include "zanthe/analysis/Extension.h"

bool HasBrecExtension(const std::string& path) {
    return LowerFileExtension(win32::Utf8ToWide(path)) == L".brec";
}
