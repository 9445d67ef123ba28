// The key frames of a file, as IMFSeekInfo.
#pragma once

#include <string>

#include "platform/mf/SeekInfo.h"

namespace mf {

// *object: those of a video stream as the interface `iid`, with a reference for the caller.
HRESULT CreateSeekInfo(const std::string& path, int ordinal, REFIID iid, void** object);

} // namespace mf
