// What a person ought to know about the answers of a classification: where they rest on a damaged
// file, contradict each other or are no facts.
#pragma once

#include <string>
#include <vector>

#include "zanthe/analysis/FileClassification.h"

namespace Zanthe {

// `file` without its remarks. Opens the container once more. One sentence each, without a full
// stop; codecs that hold anything but printable characters stand in hexadecimal.
//
// Thread-safety: safe from any thread.
std::vector<std::string> RemarksOn(const FileClassification& file);

} // namespace Zanthe
