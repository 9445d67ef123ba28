// The fragments of an MP4 file, whose samples the header does not tell.
#pragma once

#include "platform/av/Handles.h"

namespace av {

// Goes through all fragments of the file, so that the index and the duration of each track are
// those of the whole. It reads no sample, and costs little where there are no fragments. Nothing
// can be read from the context afterwards: every track is discarded.
void VisitFragments(AVFormatContext& context);

} // namespace av
