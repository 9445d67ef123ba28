// Reads what the file says of a video stream.
#pragma once

#include "platform/av/Handles.h"
#include "platform/av/VideoStream.h"

namespace av {

// How long the file lasts, in 100 ns; 0: unknown.
std::int64_t DurationOf(const AVFormatContext& format);

VideoFacts ReadVideoFacts(const AVFormatContext& format, const AVStream& stream);

} // namespace av
