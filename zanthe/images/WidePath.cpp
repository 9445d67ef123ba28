#include "zanthe/images/WidePath.h"

#include "platform/win32/Text.h"

namespace Zanthe {

CStringW WidePath(const std::string& path) {
    return win32::Utf8ToWide(path);
}

} // namespace Zanthe
