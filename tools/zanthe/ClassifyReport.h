// How `zanthe classify` tells its answers.
#pragma once

#include <ostream>

#include "zanthe/analysis/FileClassification.h"

namespace Program {

// For people: a name and its answer on each line, in columns.
void PrintLines(const Zanthe::FileClassification& file, std::ostream& out);

// For programs: one JSON object, on one line.
void PrintJson(const Zanthe::FileClassification& file, std::ostream& out);

} // namespace Program
