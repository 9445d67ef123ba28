#include <algorithm>
#include <stdexcept>

#include "tools/zanthe/TimeText.h"
#include "tools/zanthe/options/CommonOptions.h"
#include "tools/zanthe/options/Options.h"

namespace Program {

namespace {

// A list of times, as ParseTimes reads it.
class Times : public CLI::Validator {
public:
    Times() {
        func_ = [](std::string& text) -> std::string {
            try {
                ParseTimes(text);
                return {};
            } catch (const std::invalid_argument& error) {
                return error.what();
            }
        };
    }
};

} // namespace

void Declare(CLI::App& command, FrameRequest& request) {
    AddFile(command, request.file,
            "The file to read; the pictures of a legacy recording are named as "
            "a.orirec!Screen_Stream.avi");
    command
        .add_option_function<std::string>(
            "--at",
            [&request](std::string text) {
                std::replace(text.begin(), text.end(), '\n', ',');
                request.times = ParseTimes(text);
                request.typed = SplitAtCommas(text);
            },
            "Times of the pictures, in seconds from the start, taken exactly: a fraction "
            "(1001/30000), a decimal (12.5), or [h:]m:s (0:01:02.5)")
        // Not with a comma: at that CLI11 would also part what was given, and drop empty parts.
        ->multi_option_policy(CLI::MultiOptionPolicy::Join)
        ->type_name("TIME[,TIME...]")
        ->transform(Times())
        ->required();
    AddStreamAndFormat(command, request.choice);
    CLI::Option_group* output = command.add_option_group("output", "One of these");
    output
        ->add_option(
            "-o,--output", request.png,
            "The PNG file to write; several times write OUT-1.png, OUT-2.png and so on, "
            "with as many digits as the last one needs; - is standard output, for one time")
        ->type_name("OUT.png");
    output
        ->add_option("--raw", request.raw,
                     "Write bare pixels instead: 4 bytes each, blue, green, red, alpha; rows from "
                     "the top without padding; numbered as above")
        ->type_name("OUT.bgra");
    output->require_option(1);
    AddFlag(command, "--as-stored", request.asStored,
            "Leave the picture as it is stored (default: turned upright, and stretched "
            "where pixels are not square)");
    AddJson(command, request.json);
}

} // namespace Program
