// zanthe sheet: a file's pictures, and its sound, at a glance.
#pragma once

#include <ostream>
#include <string>

#include "tools/zanthe/IVideo.h"
#include "tools/zanthe/OpenVideo.h"
#include "zanthe/audio/IAudioReader.h"

namespace Program {

struct SheetRequest {
    std::string file; // may name a member of a recording behind a "!"
    VideoChoice choice;
    int columns = 4;
    int rows = 4;
    std::string output;
    bool json = false;
};

// Writes the sheet as a PNG file and says so on `out`.
//
// Throws CommandError when the file or the output cannot be served, std::exception with the
// library's text when reading fails, Interrupted. In each case the output is what it was before.
void RunSheet(const SheetRequest& request, std::ostream& out);

// The request as it suits the video: no more cells than it has pictures, but for the last row.
SheetRequest Suited(IVideo& video, const SheetRequest& request);

// The same over a video that is open, and over its sound, which may be null: with sound a strip
// below the pictures shows how loud it is over the video's time, from the left to the right.
void WriteSheet(IVideo& video, Zanthe::IAudioReader* sound, const SheetRequest& request,
                std::ostream& out);

// Of the sound that WriteSheet takes, in Hz.
inline constexpr int SheetSoundRate = 44100;

} // namespace Program
