// zanthe audio: a file's sound, or a part of it, as a WAV file.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "tools/zanthe/Sound.h"
#include "zanthe/audio/WavUtl.h"

namespace Program {

struct AudioRequest {
    std::string file;
    std::string output;
    std::int64_t start = 0;             // first frame, counted at the rate of the sound
    std::optional<std::int64_t> frames; // at that rate; none: to the end of the sound
    int rate = 44100;                   // Hz; a backend with a rate of its own goes before
    std::optional<int> track = {};      // of a recording; none: the first of sound
    bool recontainer = false;           // AAC in MP4 by way of a copy of its track
    bool isFloat = false;
    bool json = false;

    Zanthe::WavUtl::WavFormat Format() const {
        return isFloat ? Zanthe::WavUtl::WavFormat::Float32 : Zanthe::WavUtl::WavFormat::Pcm16;
    }
};

// Does what the request asks and says so on `out`: one line, or one JSON object. The file and the
// report tell the rate at which the sound came.
//
// Throws CommandError when the file or the output cannot serve it, std::exception with the
// library's text when decoding fails, Interrupted. In each case the output is what it was before.
void RunAudio(const AudioRequest& asked, std::ostream& out);

// Writes what the request asks for of `reader`'s sound, at the request's rate, to a WAV file at
// `path` and answers how many frames that were. Throws CommandError when the sound does not reach
// the request's start, when more than maxFrames come, and when the file could not be written whole;
// else as RunAudio.
std::int64_t WriteSound(Zanthe::IAudioReader& reader, const AudioRequest& request,
                        const std::string& path, std::int64_t maxFrames);

} // namespace Program
