// The one place of the program that knows which reader a file's sound is read with.
#pragma once

#include <memory>
#include <string>

#include "zanthe/audio/IAudioReader.h"

namespace Program {

// A reader over the sound of the file at `path`, 2 channels at `rate` Hz. track: the number of the
// sound track, counted from 0; -1 for the first.
//
// Throws CommandError when the file cannot be read (see InputFile.h), when no reader takes this
// kind of file, or with the library's own text when its reader refuses it.
std::unique_ptr<Zanthe::IAudioReader> OpenAudio(const std::string& path, int track, int rate);

} // namespace Program
