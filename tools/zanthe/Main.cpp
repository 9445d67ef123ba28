// The command line of `zanthe`: what may be asked and how it is spelt. What it does stands in the
// commands' own files.
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <limits>
#include <new>
#include <string>

#include <CLI/CLI.hpp>

#include "tools/zanthe/AudioCommand.h"
#include "tools/zanthe/ClassifyCommand.h"
#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/VerifyCommand.h"

namespace {

constexpr int ExitRefused = 1;
constexpr int ExitUsage = 2;

constexpr const char* ExitStatuses =
    "Exit status: 0 done, 1 the file or the request cannot be served (one line on stderr says\n"
    "why), 2 wrong usage, 130 or 143 interrupted.";

// A decimal number in [low, high]. CLI11 alone would read 010 as eight and take what is too large
// for the largest there is.
class WholeNumber : public CLI::Validator {
public:
    WholeNumber(std::uint64_t low, std::uint64_t high) {
        const std::string range = std::to_string(low) + " to " + std::to_string(high);
        func_ = [=](std::string& text) -> std::string {
            std::uint64_t number = 0;
            const char* end = text.data() + text.size();
            const auto [stop, error] = std::from_chars(text.data(), end, number);
            if (error != std::errc() || stop != end || number < low || number > high) {
                return text + " is no whole number from " + range;
            }
            text = std::to_string(number);
            return {};
        };
    }
};

// No sound is this long: it is days at the highest rate.
constexpr std::uint64_t MaxFrame = 400'000'000'000;
constexpr std::uint64_t MaxSeeks = 1'000'000'000;

void AddRate(CLI::App& command, int& rate) {
    command.add_option("--rate", rate, "Sample rate of what is read, in Hz, 1000 to 768000")
        ->type_name("HZ")
        ->transform(WholeNumber(1000, 768000))
        ->capture_default_str();
}

void AddJson(CLI::App& command, bool& json) {
    command.add_flag("--json", json, "Print one JSON object instead of text");
}

CLI::App* AddAudio(CLI::App& app, Program::AudioRequest& request) {
    CLI::App* command = app.add_subcommand("audio", "Write a file's sound as a stereo WAV file");
    command->footer(ExitStatuses);
    command->add_option("FILE", request.file, "The file to read")->required()->type_name("");
    command
        ->add_option("--start", request.start,
                     "First sample frame to write, counted at the rate of --rate")
        ->type_name("FRAME")
        ->transform(WholeNumber(0, MaxFrame))
        ->capture_default_str();
    command
        ->add_option("--frames", request.frames,
                     "How many sample frames to write, counted at the rate of --rate; fewer come "
                     "when the sound ends (default: to its end)")
        ->type_name("N")
        ->transform(WholeNumber(0, MaxFrame));
    AddRate(*command, request.rate);
    command
        ->add_option(
            "--track", request.track,
            "Number of the sound track, counted from 0 (default: the first); an MP3 file has "
            "one, whatever is given")
        ->type_name("N")
        ->transform(WholeNumber(0, std::numeric_limits<int>::max()));
    command->add_flag("--float", request.isFloat, "Write 32 bit floats (default: 16 bit integers)");
    command
        ->add_option("-o,--output", request.output,
                     "The WAV file to write; one that is there is replaced at the end")
        ->type_name("OUT.wav")
        ->required();
    AddJson(*command, request.json);
    return command;
}

CLI::App* AddVerify(CLI::App& app, Program::VerifyRequest& request) {
    CLI::App* command = app.add_subcommand(
        "verify", "Read a file from start to end, then in every other order, and compare");
    command->footer(ExitStatuses);
    command->add_option("FILE", request.file, "The file to read")->required()->type_name("");
    command->add_flag("--audio", request.audio, "Verify the sound (as without it, for now)");
    command->add_option("--seeks", request.seeks, "How many reads to make at random positions")
        ->type_name("N")
        ->transform(WholeNumber(0, MaxSeeks))
        ->capture_default_str();
    command
        ->add_option("--seed", request.seed,
                     "What the random positions follow from, to repeat a run (default: another "
                     "every time; it is printed)")
        ->type_name("S")
        ->transform(WholeNumber(0, std::numeric_limits<std::uint64_t>::max()));
    AddRate(*command, request.rate);
    AddJson(*command, request.json);
    return command;
}

CLI::App* AddClassify(CLI::App& app, Program::ClassifyRequest& request) {
    CLI::App* command = app.add_subcommand(
        "classify", "Tell what a file is taken for and which backends would serve it");
    command->footer(ExitStatuses);
    command
        ->add_option("FILE", request.file,
                     "The file to look at; a \"!\" and a member's name behind it choose a stream "
                     "of a recording")
        ->required()
        ->type_name("");
    AddJson(*command, request.json);
    return command;
}

int Refuse(const std::string& text) {
    std::cerr << "zanthe: " << Program::OneLine(text) << '\n';
    return ExitRefused;
}

// Does the work and turns every way that it can end into an exit status.
template <typename Request>
int Serve(void (*run)(const Request&, std::ostream&), const Request& request) {
    try {
        Program::CatchInterrupts();
        run(request, std::cout);
        if (!std::cout.flush()) {
            return Refuse("standard output: cannot be written");
        }
        return 0;
    } catch (const Program::Interrupted& interrupted) {
        return 128 + interrupted.signal;
    } catch (const Program::CommandError& error) {
        return Refuse(error.what());
    } catch (const std::bad_alloc&) {
        return Refuse(request.file + ": out of memory");
    } catch (const std::exception& error) {
        return Refuse(request.file + ": " + error.what());
    }
}

int Run(int argc, char** argv) {
    CLI::App app("Random access to what media files hold.", "zanthe");
    app.set_version_flag("--version", "zanthe " ZANTHE_VERSION);
    // None is told apart by us: CLI11 would name a missing command before a misspelt one.
    app.require_subcommand(0, 1);
    app.footer(ExitStatuses);
    Program::AudioRequest audio;
    Program::VerifyRequest verify;
    Program::ClassifyRequest classify;
    const CLI::App* audioCommand = AddAudio(app, audio);
    const CLI::App* classifyCommand = AddClassify(app, classify);
    AddVerify(app, verify);
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty()) {
            throw CLI::RequiredError::Subcommand(1);
        }
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : ExitUsage;
    }
    if (classifyCommand->parsed()) {
        return Serve(Program::RunClassify, classify);
    }
    return audioCommand->parsed() ? Serve(Program::RunAudio, audio)
                                  : Serve(Program::RunVerify, verify);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (...) {
        // What is left to come here is that there was no memory for saying anything longer.
        std::fputs("zanthe: out of memory\n", stderr);
        return ExitRefused;
    }
}
