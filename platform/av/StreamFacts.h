// What kind of track a stream of an opened MP4 or QuickTime file is.
#pragma once

#include <string>

#include "platform/av/Handles.h"

namespace av {

enum class TrackKind { Video, Audio, Other };

TrackKind KindOf(const AVStream& stream);

// The four characters of its first sample description; empty if it has none.
std::string CodecOf(const AVStream& stream);

// Whether it is the file's cover picture, which is no track.
bool IsCover(const AVStream& stream);

} // namespace av
