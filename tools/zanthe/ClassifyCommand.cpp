#include "tools/zanthe/ClassifyCommand.h"

#include <filesystem>
#include <system_error>

#include "tools/zanthe/ClassifyReport.h"
#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/FileContents.h"
#include "tools/zanthe/InputFile.h"
#include "tools/zanthe/Interrupt.h"
#include "zanthe/analysis/FileClassification.h"

namespace Program {

namespace {

// Whether a file is there up to a "!", behind which no member is recognised.
bool NamesUnknownMember(const std::string& file) {
    std::error_code unknown;
    const std::size_t mark = file.rfind('!');
    return mark != std::string::npos && !std::filesystem::exists(file, unknown) &&
           std::filesystem::is_regular_file(file.substr(0, mark), unknown);
}

// Of a member it is the recording that has to be there, and then the message names both.
void RequireReadable(const std::string& file) {
    const std::string container = Zanthe::ContainerPathOf(file);
    if (container == file) {
        if (NamesUnknownMember(file)) {
            throw CommandError(file, "no such file, and no member that recordings have");
        }
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

// What no line of the library says of a legacy recording, which only the program looks into.
void RemarkScreenStream(Zanthe::FileClassification& file) {
    const std::string screen = ScreenStreamIn(file.parsed.container);
    if (!screen.empty() && file.parsed.kind != "screen video") {
        file.remarks.push_back("it is a legacy recording: its pictures are read by the name " +
                               screen);
    }
}

} // namespace

void RunClassify(const ClassifyRequest& request, std::ostream& out) {
    StopCatchingInterrupts();
    RequireReadable(request.file);
    Zanthe::FileClassification file = Zanthe::ClassifyFile(request.file);
    RemarkScreenStream(file);
    if (request.json) {
        PrintJson(file, out);
    } else {
        PrintLines(file, out);
    }
}

} // namespace Program
