// What `zanthe verify` says about a file's pictures, for people and for programs.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "tools/zanthe/JsonLine.h"
#include "tools/zanthe/VideoVerifier.h"

namespace Program {

struct VideoVerifyReport {
    std::string file;
    std::uint64_t seed = 0;
    VideoFacts facts;
    VideoVerification video;
};

// A few lines: the pictures, the reads by kind, the remarks (where the header ends the stream
// elsewhere than its last picture does, ...), the first difference if any.
void PrintLines(const VideoVerifyReport& report, std::ostream& out);

// The same as a JSON object, file and seed left out: they are not the pictures' alone.
Json JsonOf(const VideoVerifyReport& report);

// One line: kind of read, time asked, and in what the answer differs.
std::string Describe(const VideoDifference& difference);

} // namespace Program
