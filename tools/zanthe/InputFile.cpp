#include "tools/zanthe/InputFile.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/zanthe/CommandError.h"
#include "tools/zanthe/OutputFile.h"

namespace Program {

namespace {

std::string TextOf(int error) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return "no such file";
    case EACCES:
        return "permission denied";
    default:
        return std::generic_category().message(error);
    }
}

} // namespace

void RequireReadableFile(const std::string& path) {
    struct stat status {};

    if (stat(path.c_str(), &status) != 0) {
        throw CommandError(path, TextOf(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        throw CommandError(path, "is a folder");
    }
    // Reading at random needs a file: a pipe has no position to go back to, and opening one with
    // nobody at its other end would wait for ever.
    if (!S_ISREG(status.st_mode)) {
        throw CommandError(path, "is not a regular file");
    }
    if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0) {
        throw CommandError(path, TextOf(errno));
    }
    if (status.st_size == 0) {
        throw CommandError(path, "is empty");
    }
}

void RequireOtherFile(const std::string& input, const std::string& output) {
    std::error_code noSuchFile;
    if (!OutputFile::IsStandardOutput(output) &&
        std::filesystem::equivalent(input, output, noSuchFile)) {
        throw CommandError(output, "is the input file itself");
    }
}

} // namespace Program
