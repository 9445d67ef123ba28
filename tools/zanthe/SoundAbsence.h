// Why a file's sound cannot be had: it has none, or this build has no reader for it.
#pragma once

#include <string>

namespace Program {

struct SoundAbsence {
    bool isSilent = false; // the file has no sound, which is no fault
    std::string text = {}; // empty: nothing is known beyond what the library said
};

// Goes by the tracks and the kind of the file at `path`, whose sound could not be read.
SoundAbsence WhyNoSound(const std::string& path);

} // namespace Program
