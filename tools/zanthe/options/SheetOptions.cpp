#include "tools/zanthe/options/CommonOptions.h"
#include "tools/zanthe/options/Options.h"

namespace Program {

void Declare(CLI::App& command, SheetRequest& request) {
    constexpr int most = 20;
    AddFile(command, request.file,
            "The file to read; the pictures of a legacy recording are named as "
            "a.orirec!Screen_Stream.avi");
    command.add_option("--columns", request.columns, "Pictures in a row, 1 to 20")
        ->type_name("N")
        ->transform(WholeNumber(1, most))
        ->capture_default_str();
    command.add_option("--rows", request.rows, "Rows, 1 to 20")
        ->type_name("N")
        ->transform(WholeNumber(1, most))
        ->capture_default_str();
    AddStreamAndFormat(command, request.choice);
    AddPngOutput(command, request.output);
    AddJson(command, request.json);
}

} // namespace Program
