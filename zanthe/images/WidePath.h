// How a host comes to the wide paths that some loaders take.
#pragma once

#include <string>

#include "platform/win32/CString.h"
#include "zanthe/core/Export.h"

namespace Zanthe {

// The wide form of a path in UTF-8. File names are any bytes here: those that are no UTF-8 come
// through as well, and name the same file.
//
// Thread-safety: safe from any thread.
ZANTHE_API CStringW WidePath(const std::string& path);

} // namespace Zanthe
