// What `zanthe verify` says about a file's sound, for people and for programs.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "tools/zanthe/AudioVerifier.h"
#include "tools/zanthe/JsonLine.h"

namespace Program {

struct VerifyReport {
    std::string file;
    int rate = 0; // Hz
    std::uint64_t seed = 0;
    AudioVerification audio;
};

// A few lines: the sound, the spans and frames compared by kind, the first difference if any.
void PrintLines(const VerifyReport& report, std::ostream& out);

// The same as a JSON object, file and seed left out: they are not the sound's alone.
Json JsonOf(const VerifyReport& report);

// One line: kind of read, span, and in what it differs, samples with their bits.
std::string Describe(const Difference& difference);

} // namespace Program
