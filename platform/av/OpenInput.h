// Opens a media file for demultiplexing.
#pragma once

#include <string>

#include "platform/av/Handles.h"

namespace av {

// Opens the regular file named `path`, whatever characters the name has: a colon in it does not
// make it an address, and nothing but a file is ever read. `context` owns an allocated context on
// entry; it is empty after a failure. Answers 0 or a negative FFmpeg code (AVERROR(EINVAL) for what
// is there but is no regular file: a folder, a device, a pipe that would block).
int OpenInput(FormatContextPtr& context, const std::string& path);

} // namespace av
