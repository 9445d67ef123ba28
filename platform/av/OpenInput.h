// Opens a media file for demultiplexing.
#pragma once

#include <string>

#include "platform/av/Handles.h"

namespace av {

// Opens the regular file named `path`, whatever characters the name has: a colon in it does not
// make it an address, and no other file is read, whatever this one refers to. `context` owns an
// allocated context on entry; it is empty after a failure. Answers 0 or a negative FFmpeg code
// (AVERROR(EINVAL) for what is there but is no regular file: a folder, a device, a pipe that would
// block; AVERROR_INVALIDDATA for an MP4 file that IsTooCostlyToOpen).
int OpenInput(FormatContextPtr& context, const std::string& path);

// Whether a file's edit lists shape the times and the samples of its tracks.
enum class EditLists {
    Applied, // the times are those of the presentation
    Ignored, // the times are the track's own, from 0 on, and every sample is there
};

// The MP4 or QuickTime file at `path`, opened as above; empty where it is none.
FormatContextPtr OpenMp4(const std::string& path, EditLists editLists);

// What the bytes of the regular file at `path` look like; `format` is libavformat's own and lives
// for ever. The file's name plays no part where `byName` is false. Answers how sure that is, from 0
// to AVPROBE_SCORE_MAX, or a negative FFmpeg code.
int ProbeFile(const std::string& path, bool byName, const AVInputFormat*& format);

} // namespace av
