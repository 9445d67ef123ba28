// A file that is there whole or not at all; or standard output, which gets all of it or nothing.
//
//     OutputFile output("out.wav");
//     write(output.TemporaryPath());
//     output.Commit();               // until here nothing of out.wav has changed
#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

#include "tools/zanthe/Interrupt.h"

namespace Program {

// Thread-safety: none.
class OutputFile {
public:
    // Makes an empty file under a fresh name in the target's folder, with the permissions of a file
    // that the target would replace, else those of any new file. A target that is a symbolic link
    // stands for what it points to. "-" and the names of standard output ("/dev/stdout") stand for
    // that: then the temporary file is in the system's folder for such files.
    //
    // Throws CommandError when nothing can be written there: the folder is missing or closed to us,
    // the target is a folder, a device, or a file that we may not write to; standard output is a
    // terminal.
    explicit OutputFile(const std::string& target);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    // Without a Commit before, the temporary file goes and the target is what it was; also when a
    // signal ends the program at once.
    ~OutputFile();

    const std::string& TemporaryPath() const { return m_temporary; }

    // Puts the temporary file, which is written and closed by now, in the target's place, or copies
    // it to standard output. Throws CommandError when the system refuses, and Interrupted when
    // whoever reads standard output has left.
    void Commit();

    // Whether `target` stands for standard output.
    static bool IsStandardOutput(const std::string& target);

private:
    std::string m_name;             // the target as the user wrote it, for messages
    std::filesystem::path m_target; // empty: standard output
    std::string m_temporary;        // empty after Commit
    std::optional<RemovedWhenEnded> m_removed;
};

// Where to report on writing `target`: `out`, which is the program's standard output, or standard
// error when the file itself goes there.
std::ostream& ReportStream(const std::string& target, std::ostream& out);

} // namespace Program
