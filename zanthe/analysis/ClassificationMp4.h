// What a classified file holds as an MP4 or QuickTime file.
#pragma once

#include "zanthe/analysis/FileClassification.h"

namespace Zanthe {

// Fills in pngMov, aacInMp4, mp4Problem, tracks, streams and orientation, by the path and by what
// is parsed of it; all others stay as they are. Throws for the lack of memory alone.
//
// Thread-safety: safe from any thread.
void ClassifyMp4(FileClassification& file);

} // namespace Zanthe
