// Which stream of an opened file is read.
#pragma once

#include "platform/av/Handles.h"

namespace av {

// The index of the file's video stream number `ordinal`, attached pictures not counted; -1 where
// there are not so many.
int FindVideoStream(const AVFormatContext& context, int ordinal);

// Has the demuxer pass over all streams but `kept`.
void DiscardOthers(AVFormatContext& context, int kept);

} // namespace av
