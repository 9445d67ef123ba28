// zanthe sheet: a file's pictures at a glance.
#pragma once

#include <ostream>
#include <string>

#include "tools/zanthe/IVideo.h"
#include "tools/zanthe/OpenVideo.h"

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

// The request as it suits the video: a single cell for one that has a single picture.
SheetRequest Suited(IVideo& video, const SheetRequest& request);

// The same over a video that is open.
void WriteSheet(IVideo& video, const SheetRequest& request, std::ostream& out);

} // namespace Program
