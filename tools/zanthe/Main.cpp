// The program: takes the command line apart, runs the command, and turns every way that it can end
// into an exit status and a line.
#include <cstdio>
#include <deque>
#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/Interrupt.h"
#include "tools/zanthe/options/Options.h"

namespace {

constexpr int ExitRefused = 1;
constexpr int ExitUsage = 2;

constexpr const char* ExitStatuses =
    "Exit status: 0 done, 1 the file or the request cannot be served (one line on stderr says\n"
    "why), 2 wrong usage, 128 and the signal's number (130: Ctrl-C) when interrupted: at the next\n"
    "good place, at a second signal at once, and after two seconds in any case.";

int EndWith(int status, const std::string& text) {
    std::cerr << "zanthe: " << Program::OneLine(text) << '\n';
    return status;
}

// What was printed last may have failed to get out only now.
int FlushOutput() {
    if (std::cout.flush()) {
        return 0;
    }
    Program::ThrowIfInterrupted();
    return EndWith(ExitRefused, "standard output: cannot be written");
}

int Serve(const std::string& file, const std::function<void()>& run) {
    try {
        run();
        return FlushOutput();
    } catch (const Program::Interrupted& interrupted) {
        return 128 + interrupted.signal;
    } catch (const Program::UsageError& error) {
        return EndWith(ExitUsage, error.what());
    } catch (const Program::CommandError& error) {
        return EndWith(ExitRefused, error.what());
    } catch (const std::bad_alloc&) {
        return EndWith(ExitRefused, file + ": out of memory");
    } catch (const std::exception& error) {
        // The bare class says nothing more than its name.
        const std::string text = error.what();
        return EndWith(ExitRefused, file + ": " + (text == "std::exception" ? "is damaged" : text));
    } catch (const char* text) {
        // The graph side of the library throws its texts bare.
        return EndWith(ExitRefused, file + ": " + text);
    }
}

// The commands of the program. One may be parsed, and that one then run.
class Commands {
public:
    explicit Commands(CLI::App& app)
        : m_app(app) {}

    template <typename Request>
    void Add(const std::string& name, const std::string& text,
             void (*run)(const Request&, std::ostream&)) {
        CLI::App* app = m_app.add_subcommand(name, text);
        app->footer(ExitStatuses);
        auto request = std::make_shared<Request>();
        Program::Declare(*app, *request);
        m_commands.push_back({app, [request, run] {
                                  return Serve(request->file, [&] { run(*request, std::cout); });
                              }});
    }

    int RunParsed() const {
        for (const Command& command : m_commands) {
            if (command.app->parsed()) {
                return command.run();
            }
        }
        return ExitUsage;
    }

private:
    struct Command {
        const CLI::App* app;
        std::function<int()> run;
    };

    CLI::App& m_app;
    std::vector<Command> m_commands;
};

void AddAll(Commands& commands) {
    commands.Add("audio", "Write a file's sound as a stereo WAV file", Program::RunAudio);
    commands.Add("bench", "Measure how fast a file's pictures come, in every order",
                 Program::RunBench);
    commands.Add("classify", "Tell what a file is taken for and which backends would serve it",
                 Program::RunClassify);
    commands.Add("frame", "Write the pictures shown at given times", Program::RunFrame);
    commands.Add("image", "Write a still picture, or a page of a PDF document, as a PNG file",
                 Program::RunImage);
    commands.Add("sheet", "Write a contact sheet of a file's pictures", Program::RunSheet);
    commands.Add("verify", "Read a file from start to end, then in every other order, and compare",
                 Program::RunVerify);
}

// What a wrong command line is to be told. CLI11 looks for what is missing before it looks at what
// it does not know, and would ask for FILE where an option is misspelt.
std::string TextOf(const CLI::App& app, const CLI::ParseError& error) {
    const auto commands = app.get_subcommands();
    const std::string help =
        commands.empty() ? "zanthe --help" : "zanthe " + commands.front()->get_name() + " --help";
    const std::vector<std::string> unknown = app.remaining(true);
    std::string text = error.what();
    if (!unknown.empty() && unknown.front() != "--") {
        const bool isOption = unknown.front().rfind('-', 0) == 0;
        text = (isOption           ? "no such option: "
                : commands.empty() ? "no such command: "
                                   : "one argument too many: ") +
               unknown.front();
    }
    return text + " (see " + help + ")";
}

// Help and version end well, all other errors do not.
int EndParsing(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) {
        return EndWith(ExitUsage, TextOf(app, error));
    }
    return Serve("zanthe", [&] { app.exit(error, std::cout, std::cerr); });
}

int Run(int argc, char** argv) {
    Program::CatchInterrupts();
    CLI::App app("Random access to what media files hold.", "zanthe");
    app.set_version_flag("--version", "zanthe " ZANTHE_VERSION);
    // None is told apart by us: CLI11 would name a missing command before a misspelt one.
    app.require_subcommand(0, 1);
    app.footer(ExitStatuses);
    Commands commands(app);
    AddAll(commands);
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty()) {
            throw CLI::RequiredError::Subcommand(1);
        }
    } catch (const CLI::ParseError& error) {
        return EndParsing(app, error);
    }
    return commands.RunParsed();
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
