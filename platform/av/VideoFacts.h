// Reads what the file says of a video stream.
#pragma once

#include "platform/av/Handles.h"
#include "platform/av/VideoStream.h"

namespace av {

VideoFacts ReadVideoFacts(const AVFormatContext& format, const AVStream& stream);

} // namespace av
