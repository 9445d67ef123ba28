#include <limits>

#include "tools/zanthe/options/CommonOptions.h"
#include "tools/zanthe/options/Options.h"

namespace Program {

namespace {

// No sound is this long: it is days at the highest rate.
constexpr std::uint64_t MaxFrame = 400'000'000'000;

} // namespace

void Declare(CLI::App& command, AudioRequest& request) {
    AddFile(command, request.file, "The file to read");
    command
        .add_option("--start", request.start,
                    "First sample frame to write, counted at the rate of the sound")
        ->type_name("FRAME")
        ->transform(WholeNumber(0, MaxFrame))
        ->capture_default_str();
    command
        .add_option("--frames", request.frames,
                    "How many sample frames to write, counted at the rate of the sound; fewer come "
                    "when the sound ends (default: to its end)")
        ->type_name("N")
        ->transform(WholeNumber(0, MaxFrame));
    AddRate(command, request.rate);
    command
        .add_option("--track", request.track,
                    "Number of the track in a recording, counted from 0 over tracks of any kind "
                    "(default: the first of sound); other files have one, whatever is given")
        ->type_name("N")
        ->transform(WholeNumber(0, std::numeric_limits<int>::max()));
    AddRecontainer(command, request.recontainer);
    AddFlag(command, "--float", request.isFloat, "Write 32 bit floats (default: 16 bit integers)");
    command
        .add_option("-o,--output", request.output,
                    "The WAV file to write; one that is there is replaced at the end; - is "
                    "standard output")
        ->type_name("OUT.wav")
        ->required();
    AddJson(command, request.json);
}

} // namespace Program
