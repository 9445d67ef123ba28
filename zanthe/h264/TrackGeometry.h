// How the headers of a file have its video shown, looked up once a process.
#pragma once

#include <string>

#include "zanthe/analysis/MediaOrientation.h"

namespace Zanthe {

// Transform and display size of the video track.
using TrackGeometry = MediaOrientation;

// The geometry of the file at `path` (UTF-8); the default where it has none to tell. It is read when
// a path is first asked for and never looked at again.
//
// Thread-safety: safe from any thread. One lock is held for all of a look-up, so files that are new
// are read one after the other.
TrackGeometry TrackGeometryOf(const std::string& path);

} // namespace Zanthe
