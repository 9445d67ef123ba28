// Why a file's pictures cannot be had, in words for its user: the library's own text tells where it
// gave up, and means nothing to most.
#pragma once

#include <string>

#include "tools/zanthe/CommandError.h"
#include "zanthe/analysis/FileClassification.h"

namespace Program {

// "no reader for its pictures: ", what is wrong, and what the classification adds. reason: the
// library's text.
CommandError VideoRefusal(const Zanthe::FileClassification& file, const std::string& reason);

// The same of a recording that opened and has no pictures to give: what it is instead, or "has no
// pictures" for one of sound alone.
CommandError RecordingRefusal(const Zanthe::FileClassification& file);

} // namespace Program
