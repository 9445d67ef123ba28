// FFmpeg's own messages.
#pragma once

namespace av {

// FFmpeg writes a line to standard error for many a file. Inside somebody's editor that is noise,
// so it is turned off, unless the host has set a level of its own. Called before FFmpeg is given
// anything of a file; only the first call counts.
// Thread-safety: safe from any thread.
void QuietUnlessChosen();

} // namespace av
