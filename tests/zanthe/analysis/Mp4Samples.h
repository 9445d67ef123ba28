#pragma once

#include <string>
#include <vector>

// The files that tests/media/make-mp4 makes.
inline std::vector<std::string> Mp4Samples() {
    return {"mp4-audio-first.mp4",   "mp4-audio-only.m4a",
            "mp4-audio-only.mp4",    "mp4-fragmented.mp4",
            "mp4-hevc-pasp-2-1.mp4", "mp4-jpeg.mov",
            "mp4-mdat-64bit.mp4",    "mp4-moov-first.mp4",
            "mp4-mpeg4.mp4",         "mp4-no-ftyp.mov",
            "mp4-odd-size-444.mp4",  "mp4-pasp-4-3.mp4",
            "mp4-pcm.mov",           "mp4-plain.mov",
            "mp4-plain.mp4",         "mp4-png-upper.MOV",
            "mp4-png.mov",           "mp4-rotate180.mp4",
            "mp4-rotate270.mp4",     "mp4-rotate90.mp4",
            "mp4-text-first.mov",    "mp4-text-track.mov",
            "mp4-text-track.mp4",    "mp4-timecode.mov",
            "mp4-two-videos.mp4",    "mp4-version1-headers.mp4"};
}
