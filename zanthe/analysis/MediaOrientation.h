// How the video of an MP4 or QuickTime file is meant to be shown.
//
//     int degrees = RotationFromOrientation(ReadMediaOrientation(path));
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "zanthe/analysis/MP4Matrix.h"

struct MediaOrientation {
    MP4Matrix matrix = IdentityMatrix; // the movie's transform times the video track's
    std::int32_t width = 0;            // of the video track's picture as shown, in whole pixels
    std::int32_t height = 0;

    friend bool operator==(const MediaOrientation&, const MediaOrientation&) = default;
};

// The orientation of the last video track of the file at `path`, which may name a member of a
// recording; then it is the recording that is read.
//
// The default (identity, no size) when the extension is neither "mov" nor "mp4", in any case, and
// when the file cannot be opened or parsed. Without a video track the movie's own transform stays,
// with no size. Transforms that scale or shear come out as they are.
//
// Thread-safety: safe from any thread, also on one file. Never throws but for memory.
MediaOrientation ReadMediaOrientation(const std::wstring& path);

// The same, and nothing where the default stands for an extension or a file that does not serve.
std::optional<MediaOrientation> FindMediaOrientation(const std::wstring& path);

// The clockwise turn that a picture needs to stand upright, in degrees: 90, 180 or 270 when the
// matrix is exactly that turn (a mirrored quarter turn is none), else 0.
//
// Thread-safety: safe from any thread.
int RotationFromOrientation(const MediaOrientation& orientation);
