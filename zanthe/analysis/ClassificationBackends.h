// Which backends a classified file goes to.
#pragma once

#include "zanthe/analysis/FileClassification.h"

namespace Zanthe {

// Fills in audio, videoSamples, detection, system62, audioRoute and videoRoute, by the path and by
// pngMov; all others stay as they are. videoStream as ClassifyFile takes it. Throws for the lack of
// memory alone.
//
// Thread-safety: safe from any thread.
void ClassifyBackends(int videoStream, FileClassification& file);

} // namespace Zanthe
