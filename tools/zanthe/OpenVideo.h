// The one place of the program that knows which reader a file's pictures are read with.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "tools/zanthe/IVideo.h"
#include "zanthe/core/DecoderOutputFormat.h"
#include "zanthe/core/VideoSampleReader.h"

namespace Program {

struct VideoChoice {
    // Number of the stream, all of them counted from 0, where the reader looks at it; nothing: the
    // first of pictures.
    std::optional<int> stream = {};
    Zanthe::DecoderOutputFormat format = Zanthe::DecoderOutputFormat::DeviceArgb32;
};

// The pictures of the file at `path`, which may name a member of a recording behind a "!".
//
// Throws CommandError when the file cannot be read (see InputFile.h), or "no reader for its
// pictures: " and the reason when the library has none for it or its reader refuses it, with what
// the classification adds: that this build has no such reader, that name and contents contradict;
// "has no pictures" for a recording of sound alone; what ChooseTrack says where the stream that is
// chosen holds no pictures.
std::unique_ptr<IVideo> OpenVideo(const std::string& path, const VideoChoice& choice);

// The same over a reader that is open.
std::unique_ptr<IVideo> VideoOver(std::unique_ptr<Zanthe::VideoSampleReader> reader,
                                  const VideoFacts& facts);

// Says what is to be known of the pictures on stderr, a line each: the report may go to a program.
void PrintRemarks(const std::string& path, const VideoFacts& facts);

} // namespace Program
