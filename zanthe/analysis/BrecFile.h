// Which files are recordings of the newer kind.
#pragma once

#include <string>

// Whether the name of the file at `path` (UTF-8) ends in ".brec", with no regard to case. The path
// of a recording's member does not.
//
// Thread-safety: safe from any thread.
bool HasBrecExtension(const std::string& path);
