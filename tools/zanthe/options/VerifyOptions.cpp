#include <limits>

#include "tools/zanthe/options/CommonOptions.h"
#include "tools/zanthe/options/Options.h"

namespace Program {

void Declare(CLI::App& command, VerifyRequest& request) {
    AddFile(command, request.file, "The file to read");
    AddFlag(command, "--audio", request.audio,
            "Verify the sound, which must be there (default: what the file has)");
    AddFlag(command, "--video", request.video,
            "Verify the pictures, which must be there (default: what the file has)");
    command
        .add_option("--seeks", request.seeks, "How many reads to make at random positions, of each")
        ->type_name("N")
        ->transform(WholeNumber(0, MaxReads))
        ->capture_default_str();
    command
        .add_option("--seed", request.seed,
                    "What the random positions follow from, to repeat a run (default: another "
                    "every time; it is printed)")
        ->type_name("S")
        ->transform(WholeNumber(0, std::numeric_limits<std::uint64_t>::max()));
    AddRate(command, request.rate);
    AddRecontainer(command, request.recontainer);
    AddStreamAndFormat(command, request.choice);
    AddJson(command, request.json);
}

} // namespace Program
