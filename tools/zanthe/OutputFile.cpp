#include "tools/zanthe/OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <random>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tools/zanthe/CommandError.h"

namespace Program {

namespace {

[[noreturn]] void Refuse(const std::string& name, const std::string& reason) {
    throw CommandError(name, "cannot be written: " + reason);
}

[[noreturn]] void Refuse(const std::string& name, int error) {
    Refuse(name, std::generic_category().message(error));
}

// Renaming over a symbolic link would put the file in the link's place and leave what it points to.
// Followed by hand, since what the last link names need not be there yet.
std::filesystem::path BehindLinks(const std::string& name) {
    constexpr int mostLinks = 40; // as the system itself follows
    std::filesystem::path target = name;
    std::error_code error;
    for (int i = 0; std::filesystem::is_symlink(target, error); ++i) {
        if (i == mostLinks) {
            Refuse(name, ELOOP);
        }
        target = target.parent_path() / std::filesystem::read_symlink(target, error);
        if (error) {
            Refuse(name, error.value());
        }
    }
    return target;
}

// The permissions of what stands at the target, which must be a file that we may write to;
// 0666, less the process's mask, when there is nothing.
mode_t PermissionsFor(const std::string& name, const std::filesystem::path& target) {
    struct stat status {};

    if (stat(target.c_str(), &status) != 0) {
        const mode_t mask = umask(0);
        umask(mask);
        return 0666 & ~mask;
    }
    if (S_ISDIR(status.st_mode)) {
        Refuse(name, "is a folder");
    }
    if (!S_ISREG(status.st_mode)) {
        Refuse(name, "is not a regular file");
    }
    if (faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) {
        Refuse(name, errno);
    }
    return status.st_mode & 07777;
}

std::filesystem::path FolderOf(const std::string& name, const std::filesystem::path& target) {
    if (!target.has_filename()) {
        Refuse(name, "names no file");
    }
    std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    std::error_code ignored;
    if (!std::filesystem::is_directory(folder, ignored)) {
        Refuse(name, "no such folder");
    }
    return folder;
}

// Hidden, so that who looks into the folder meanwhile does not take it for a result.
std::string FreshName() {
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device random;
    std::uniform_int_distribution<std::size_t> letter(0, letters.size() - 1);
    std::string name = ".zanthe-";
    for (int i = 0; i < 12; ++i) {
        name += letters[letter(random)];
    }
    return name;
}

std::string MakeFresh(const std::string& name, const std::filesystem::path& folder,
                      mode_t permissions) {
    for (;;) {
        std::string path = (folder / FreshName()).string();
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file >= 0) {
            // Not every file system keeps permissions; the file is good without them.
            (void)!fchmod(file, permissions);
            close(file);
            return path;
        }
        if (errno != EEXIST) {
            Refuse(name, errno);
        }
    }
}

} // namespace

OutputFile::OutputFile(const std::string& target)
    : m_name(target)
    , m_target(BehindLinks(target)) {
    const mode_t permissions = PermissionsFor(m_name, m_target);
    m_temporary = MakeFresh(m_name, FolderOf(m_name, m_target), permissions);
}

OutputFile::~OutputFile() {
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
    }
}

void OutputFile::Commit() {
    if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        Refuse(m_name, errno);
    }
    m_temporary.clear();
}

} // namespace Program
