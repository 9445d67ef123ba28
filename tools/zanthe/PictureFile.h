// Bitmaps into files, with the program's own words when that fails.
#pragma once

#include <string>

#include "zanthe/core/Bitmap.h"

namespace Program {

// Both write to `path`, the passing name of an output that the user knows as `name`, and throw
// CommandError "could not be written whole".
void SavePng(const Zanthe::Bitmap& bitmap, const std::string& path, const std::string& name);

// Says on stderr that `name` has the ending of another kind of file, where it does.
void RemarkName(const std::string& name);

// The pixels alone, row by row.
void SaveRaw(const Zanthe::Bitmap& bitmap, const std::string& path, const std::string& name);

} // namespace Program
