#include "platform/av/Contents.h"

#include "platform/av/OpenInput.h"

namespace av {

std::string ContentsOf(const std::string& path) {
    const AVInputFormat* format = nullptr;
    // Below this the library itself would rather see more of the file: it is a guess.
    return ProbeFile(path, false, format) < AVPROBE_SCORE_RETRY ? std::string() : format->name;
}

} // namespace av
