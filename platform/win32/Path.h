// Paths as the library writes them, found on this system.
//
// Part of the library turns slashes into backslashes before it opens a file, as its hosts expect.
// Here a backslash is a letter like any other, so a path with one is first tried as it stands.
#pragma once

#include <string>

namespace win32 {

// The path to open for `utf8`: `utf8` itself when something is there; else `utf8` with every '\'
// read as '/' when something is there; else `utf8` itself, so that the caller's error names what
// was asked for. What is there may be of any kind, a folder too; a link counts as its target.
//
// Thread-safety: safe from any thread. Never throws but for memory.
std::string ExistingPath(const std::string& utf8);

} // namespace win32
