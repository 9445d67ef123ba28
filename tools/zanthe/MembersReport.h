// How `zanthe classify` tells what stands in a compound file.
#pragma once

#include <ostream>
#include <string>

#include "tools/zanthe/JsonLine.h"

namespace Program {

// A line for each member; nothing where the file at `path` is no compound file.
void PrintMembers(const std::string& path, std::ostream& out);

// An array of objects; empty where it is none.
Json MembersJson(const std::string& path);

} // namespace Program
