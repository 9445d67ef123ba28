// What `zanthe verify` says about a file, for people and for programs.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "tools/zanthe/AudioVerifier.h"

namespace Program {

struct VerifyReport {
    std::string file;
    int rate = 0; // Hz
    std::uint64_t seed = 0;
    AudioVerification audio;
};

// A few lines: the sound, the spans and frames compared by kind, the first difference if any.
void PrintLines(const VerifyReport& report, std::ostream& out);

// The same as one JSON object. Names that are not UTF-8 come out with replacement characters.
void PrintJson(const VerifyReport& report, std::ostream& out);

// One line: kind of read, span, and in what it differs, samples with their bits.
std::string Describe(const Difference& difference);

} // namespace Program
