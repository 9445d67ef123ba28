// Where a video ends: the header of a file says one thing, its pictures may say another.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "tools/zanthe/IVideo.h"

namespace Program {

// In 100 ns from the start; nothing where it is not known.
struct VideoEnd {
    std::optional<std::int64_t> told = {};     // by the reader, from the file's header
    std::optional<std::int64_t> pictures = {}; // of the last picture that is given
};

// What a person ought to know of the two, on one line without a full stop: the header ends the
// stream before its last picture's end, or promises a tenth of a second more than is there. Empty
// where they agree.
std::string Disagreement(const VideoEnd& end);

// Reads the last picture. Throws what the video throws, and Interrupted.
VideoEnd FindVideoEnd(IVideo& video);

// Where the video ends, for the text that refuses a time: the disagreement, or "its last picture
// ends at 0:00:00.400"; empty where nothing is known. Throws as FindVideoEnd does.
std::string DescribeEnd(IVideo& video);

} // namespace Program
