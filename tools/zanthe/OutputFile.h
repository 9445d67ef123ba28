// A file that is there whole or not at all.
//
//     OutputFile output("out.wav");
//     write(output.TemporaryPath());
//     output.Commit();               // until here nothing of out.wav has changed
#pragma once

#include <filesystem>
#include <string>

namespace Program {

// Thread-safety: none.
class OutputFile {
public:
    // Makes an empty file under a fresh name in the target's folder, with the permissions of a file
    // that the target would replace, else those of any new file. A target that is a symbolic link
    // stands for what it points to.
    //
    // Throws CommandError when nothing can be written there: the folder is missing or closed to us,
    // the target is a folder, a device, or a file that we may not write to.
    explicit OutputFile(const std::string& target);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    // Without a Commit before, the temporary file goes and the target is what it was.
    ~OutputFile();

    const std::string& TemporaryPath() const { return m_temporary; }

    // Puts the temporary file, which is written and closed by now, in the target's place. Throws
    // CommandError when the system refuses.
    void Commit();

private:
    std::string m_name; // the target as the user wrote it, for messages
    std::filesystem::path m_target;
    std::string m_temporary; // empty after Commit
};

} // namespace Program
