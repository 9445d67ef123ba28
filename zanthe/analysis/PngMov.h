// Recordings that are QuickTime files whose pictures are PNG images.
#pragma once

#include <string>
#include <vector>

#include "zanthe/analysis/MP4StreamTypes.h"

// True when the path's extension (of the recording, where it names one's member) is "mov" in any
// case, the file is there, and one of its tracks is of video with the codec "png ". Any other file
// is false, and so is one that cannot be read.
//
// Thread-safety: safe from any thread.
bool IsMovWithPngVideo(const std::wstring& path);

// The same, given the file's streams as ReadMP4StreamTypes(path) lists them.
bool IsMovWithPngVideo(const std::wstring& path, const std::vector<MP4StreamType>& streams);
