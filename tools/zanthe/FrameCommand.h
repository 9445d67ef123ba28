// zanthe frame: the pictures shown at given times, as PNG files or bare pixels.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tools/zanthe/IVideo.h"
#include "tools/zanthe/OpenVideo.h"
#include "zanthe/core/MediaTime.h"

namespace Program {

struct FrameRequest {
    std::string file; // may name a member of a recording behind a "!"
    std::vector<Zanthe::MediaTime> times;
    std::vector<std::string> typed; // the times as the user wrote them; empty: not known
    VideoChoice choice;
    std::string png; // the file to write; empty: `raw` is
    std::string raw; // pixels of 4 bytes, blue, green, red, alpha; rows without padding, top first
    bool asStored = false; // neither turned nor stretched
    bool json = false;

    const std::string& Output() const { return png.empty() ? raw : png; }
};

// Writes the pictures and says on `out` what they are. All files are there at the end, or none.
//
// Throws CommandError when the file, a time or an output cannot be served, std::exception with the
// library's text when reading fails, Interrupted.
void RunFrame(const FrameRequest& request, std::ostream& out);

// The same over a video that is open.
void WriteFrames(IVideo& video, const FrameRequest& request, std::ostream& out);

// The name of the file for picture `index` of `count`: `output` itself for a single one, else with
// the number before the extension, from 1 and as wide as the last: "out-01.png" to "out-12.png".
std::string NumberedName(const std::string& output, std::size_t index, std::size_t count);

} // namespace Program
