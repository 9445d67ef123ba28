#include "tools/zanthe/options/CommonOptions.h"
#include "tools/zanthe/options/Options.h"

namespace Program {

void Declare(CLI::App& command, ClassifyRequest& request) {
    AddFile(command, request.file,
            "The file to look at; a \"!\" and a member's name behind it choose a stream of a "
            "recording");
    AddJson(command, request.json);
}

} // namespace Program
