#include "tools/zanthe/SoundAbsence.h"

#include <algorithm>

#include "zanthe/analysis/FileClassification.h"

namespace Program {

namespace {

using Zanthe::FileClassification;

bool HasPicturesAlone(const FileClassification& file) {
    if (file.contents == "gif" || file.contents.ends_with(" picture")) {
        return true;
    }
    const auto isSound = [](const auto& stream) { return stream.kind == "audio"; };
    return file.mp4Problem.empty() && !file.streams.empty() &&
           std::none_of(file.streams.begin(), file.streams.end(), isSound);
}

} // namespace

SoundAbsence WhyNoSound(const std::string& path) {
    const FileClassification file = Zanthe::ClassifyFile(path);
    if (HasPicturesAlone(file)) {
        return {.isSilent = true, .text = "has no sound"};
    }
    if (!file.audioRoute.isBuilt && !file.audioRoute.backend.empty()) {
        return {.text = "no reader for its sound in this build, which lacks " +
                        file.audioRoute.backend};
    }
    return {};
}

} // namespace Program
