// What goes wrong most often with a file named on the command line, said plainly before the library
// is asked: its own texts tell where it gave up, not what the user did.
#pragma once

#include <string>

namespace Program {

// Returns when `path` names a regular file that is not empty and may be read. Throws CommandError
// otherwise: "names no file", "no such file", "is a folder", "is not a regular file", "is empty",
// "has contents but no size", "permission denied", or the system's own text.
void RequireReadableFile(const std::string& path);

// Returns when `output` is not the file `input`, by whatever names. Throws CommandError otherwise:
// a slip on the command line must not cost a song.
void RequireOtherFile(const std::string& input, const std::string& output);

} // namespace Program
