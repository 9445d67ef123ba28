// Whether there is something at a media path.
#pragma once

#include <string>

// Like the file at `path` itself, or, where the path names a member of a compound file
// ("c:\\a.orirec!Camera_Stream.wmv"), that member, whatever the case of its letters. The path of
// the compound file must have a backslash: without one it has no folder, and the answer is false.
//
// A member of a compound file that cannot be opened is looked for as a file of that whole name.
//
// Thread-safety: safe from any thread.
bool MediaPathExists(const std::wstring& path);
