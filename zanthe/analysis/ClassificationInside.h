// What can be read from a classified file.
#pragma once

#include "zanthe/analysis/FileClassification.h"

namespace Zanthe {

// Fills in contents of documents, imageRoute, inside, duration and the routes' obstacles, by the
// path, the contents and the routes; all others stay as they are. Throws for the lack of memory
// alone.
//
// Thread-safety: safe from any thread.
void ClassifyInside(FileClassification& file);

} // namespace Zanthe
