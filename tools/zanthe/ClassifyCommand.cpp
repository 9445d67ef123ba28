#include "tools/zanthe/ClassifyCommand.h"

#include <filesystem>
#include <system_error>

#include "tools/zanthe/ClassifyReport.h"
#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/Interrupt.h"
#include "zanthe/analysis/FileClassification.h"

namespace Program {

namespace {

// Of a member it is the recording that has to be there, and then the message names both.
void RequireReadable(const std::string& file) {
    const std::string container = Zanthe::ContainerPathOf(file);
    if (container == file) {
        RequireReadableFile(file);
        return;
    }
    try {
        RequireReadableFile(container);
    } catch (const CommandError& error) {
        std::error_code unknown;
        throw CommandError(file, std::string("names a stream inside a recording") +
                                     (std::filesystem::exists(file, unknown)
                                          ? ", although a file of that whole name is there"
                                          : "") +
                                     ": " + error.what());
    }
}

} // namespace

void RunClassify(const ClassifyRequest& request, std::ostream& out) {
    StopCatchingInterrupts();
    RequireReadable(request.file);
    const Zanthe::FileClassification file = Zanthe::ClassifyFile(request.file);
    if (request.json) {
        PrintJson(file, out);
    } else {
        PrintLines(file, out);
    }
}

} // namespace Program
