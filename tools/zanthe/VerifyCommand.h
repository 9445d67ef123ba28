// zanthe verify: whatever order a file is read in, is it the same file?
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "tools/zanthe/IVideo.h"
#include "tools/zanthe/OpenAudio.h"
#include "tools/zanthe/OpenVideo.h"

namespace Program {

struct VerifyRequest {
    std::string file;
    bool audio = false; // the sound must be there; without `video` it alone counts
    bool video = false; // and the other way round; neither: what the file has
    VideoChoice choice;
    std::int64_t seeks = 200;          // random reads, of each
    std::optional<std::uint64_t> seed; // none: another every time
    int rate = 44100;                  // Hz, of the sound, where its backend converts
    bool recontainer = false;          // the sound by way of a copy of its track
    bool json = false;
};

// How a file is opened. Each throws CommandError when the file has nothing of that kind.
struct VerifySources {
    std::function<OpenedSound()> sound;
    std::function<std::unique_ptr<IVideo>()> video;
};

// Verifies the file and says on `out` what was compared.
//
// Throws CommandError when the file cannot be read, has nothing of what is asked for, and also,
// after the report, when a read differed; std::exception with the library's text when the linear
// reading fails; Interrupted.
void RunVerify(const VerifyRequest& request, std::ostream& out);

// The same over other sources.
void Verify(const VerifySources& sources, const VerifyRequest& request, std::ostream& out);

} // namespace Program
