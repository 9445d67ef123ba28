// What a file's bytes look like, whatever its name says.
#pragma once

#include <string>

namespace av {

// The name of a container or picture format, as "mov,mp4,m4a,3gp,3g2,mj2", "mp3" or "png_pipe";
// empty where the bytes look like nothing that is known, and where `path` (UTF-8) is no regular
// file that can be read. Only the start of the file is looked at.
//
// Thread-safety: safe from any thread.
std::string ContentsOf(const std::string& path);

} // namespace av
