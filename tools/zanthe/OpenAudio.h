// The one place of the program that knows which reader a file's sound is read with.
#pragma once

#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/audio/IAudioReader.h"

namespace Program {

// A reader over the sound of the file at `path`, 2 channels at `rate` Hz where the file's backend
// converts to any rate, else at 44100 Hz. track: the number of the track in a recording, counted
// from 0; -1 is as 0.
//
// Throws CommandError when the file cannot be read (see InputFile.h), "no reader for its sound: "
// and the library's text when no backend can be made for this kind of file, or that text alone when
// the file's reader refuses it.
boost::shared_ptr<Zanthe::IAudioReader> OpenAudio(const std::string& path, int track, int rate);

} // namespace Program
