// zanthe verify: whatever order a file is read in, is it the same file?
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "zanthe/audio/IAudioReader.h"

namespace Program {

struct VerifyRequest {
    std::string file;
    bool audio =
        false; // the sound alone; without it everything that can be verified, which is that
    std::int64_t seeks = 200;          // random reads
    std::optional<std::uint64_t> seed; // none: another every time
    int rate = 44100;                  // Hz
    bool json = false;
};

// Verifies the file and says on `out` what was compared.
//
// Throws CommandError when the file cannot be read and also, after the report, when a read
// differed; std::exception with the library's text when the linear reading fails; Interrupted.
void RunVerify(const VerifyRequest& request, std::ostream& out);

// The same over a reader that is open.
void VerifySound(Zanthe::IAudioReader& reader, const VerifyRequest& request, std::ostream& out);

} // namespace Program
