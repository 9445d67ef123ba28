#include <limits>

#include "tools/zanthe/options/CommonOptions.h"
#include "tools/zanthe/options/Options.h"

namespace Program {

namespace {

void AddCount(CLI::App& command, const std::string& name, int& count, const std::string& text) {
    command.add_option(name, count, text)
        ->type_name("N")
        ->transform(WholeNumber(1, 1'000'000))
        ->capture_default_str();
}

} // namespace

void Declare(CLI::App& command, BenchRequest& request) {
    AddFile(command, request.file,
            "The file to read; the pictures of a legacy recording are named as "
            "a.orirec!Screen_Stream.avi");
    AddCount(command, "--openings", request.plan.openings, "How often the file is opened");
    AddCount(command, "--sequential", request.plan.sequential,
             "Pictures to read from the start on");
    AddCount(command, "--random", request.plan.random, "Pictures to read at random times");
    AddCount(command, "--backward", request.plan.backward, "Pictures to read one before the other");
    AddCount(command, "--scrubs", request.plan.scrubs, "Pictures to read to and fro");
    AddRate(command, request.soundPlan.rate);
    command.add_option("--seed", request.plan.seed, "What the random times follow from")
        ->type_name("S")
        ->transform(WholeNumber(0, std::numeric_limits<std::uint64_t>::max()))
        ->capture_default_str();
    AddStreamAndFormat(command, request.choice);
    AddJson(command, request.json);
}

} // namespace Program
