// What several commands spell the same way.
#pragma once

#include <cstdint>
#include <string>

#include <CLI/CLI.hpp>

#include "tools/zanthe/OpenVideo.h"

namespace Program {

// A decimal number in [low, high]. CLI11 alone would read 010 as eight and take what is too large
// for the largest there is.
class WholeNumber : public CLI::Validator {
public:
    WholeNumber(std::uint64_t low, std::uint64_t high);
};

inline constexpr std::uint64_t MaxReads = 1'000'000'000;

// A flag is given or not: "--json=false" is wrong usage, not the flag taken back.
void AddFlag(CLI::App& command, const std::string& name, bool& flag, const std::string& text);
void AddFile(CLI::App& command, std::string& file, const std::string& text);
void AddPngOutput(CLI::App& command, std::string& path);
void AddJson(CLI::App& command, bool& json);
void AddRate(CLI::App& command, int& rate);
void AddRecontainer(CLI::App& command, bool& recontainer);
void AddStreamAndFormat(CLI::App& command, VideoChoice& choice);

} // namespace Program
