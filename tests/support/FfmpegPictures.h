// What the ffmpeg and ffprobe programs make of a file.
#pragma once

#include <string>
#include <vector>

#include "tests/support/BgraPicture.h"

// What a command of the shell writes to standard output. Throws std::runtime_error when it cannot
// be run.
std::string OutputOf(const std::string& command);

// All pictures of one stream of the file at `path`, which are of this size, as the ffmpeg program
// decodes and converts them; `stream` as its option -map takes it.
std::vector<BgraPicture> FfmpegPictures(const std::string& path, int width, int height,
                                        const std::string& stream = "0:v:0");
