// The one place of the program that knows which reader a file's sound is read with.
#pragma once

#include <optional>
#include <string>

#include <boost/shared_ptr.hpp>

#include "zanthe/audio/IAudioReader.h"

namespace Program {

struct AudioChoice {
    // Of a recording, all its tracks counted from 0; nothing: the first of sound.
    std::optional<int> track = {};
    int rate = 44100;         // Hz
    bool recontainer = false; // AAC in MP4 by way of a copy of its track
};

struct OpenedSound {
    boost::shared_ptr<Zanthe::IAudioReader> reader;
    int rate = 0; // Hz, at which its frames come and are counted
};

// The sound of the file at `path`, 2 channels at the rate that was chosen where the file's backend
// converts to any rate, else at the backend's own.
//
// Throws CommandError when the file cannot be read (see InputFile.h), "no reader for its sound: "
// and the library's text when no backend can be made for this kind of file, or that text alone when
// the file's reader refuses it; what ChooseTrack says where the track that is chosen has no sound.
OpenedSound OpenAudio(const std::string& path, const AudioChoice& choice);

} // namespace Program
