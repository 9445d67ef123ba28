// Which stream of an opened file is read.
#pragma once

#include "platform/av/Handles.h"
#include "platform/av/StreamFacts.h"

namespace av {

// The index of the file's stream number `ordinal` of that kind, attached pictures not counted; -1
// where there are not so many.
int FindStream(const AVFormatContext& context, TrackKind kind, int ordinal);

// Has the demuxer pass over all streams but `kept`.
void DiscardOthers(AVFormatContext& context, int kept);

} // namespace av
