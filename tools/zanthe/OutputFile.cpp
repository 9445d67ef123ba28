#include "tools/zanthe/OutputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <random>
#include <system_error>
#include <vector>

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
        // What such a link names is a file that somebody has open, not a place to put another.
        if (target.string().starts_with("/proc/") || target.string().starts_with("/dev/fd/")) {
            Refuse(name, "names an open file");
        }
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

constexpr mode_t OwnerOnly = 0600;

std::string MakeFresh(const std::string& name, const std::filesystem::path& folder,
                      mode_t permissions) {
    for (;;) {
        std::string path = (folder / FreshName()).string();
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, OwnerOnly);
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

std::string MakeFreshForStandardOutput(const std::string& name) {
    if (isatty(STDOUT_FILENO) != 0) {
        Refuse(name, "standard output is a terminal");
    }
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error) {
        Refuse(name, error.value());
    }
    return MakeFresh(name, folder, OwnerOnly);
}

void WriteAll(const std::string& name, const char* bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = write(STDOUT_FILENO, bytes, count);
        if (written < 0 && errno != EINTR) {
            const int error = errno;
            ThrowIfInterrupted();
            Refuse(name, error);
        }
        bytes += std::max<ssize_t>(written, 0);
        count -= static_cast<std::size_t>(std::max<ssize_t>(written, 0));
    }
}

void CopyToStandardOutput(const std::string& name, const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    std::vector<char> bytes(1 << 20);
    while (stream) {
        stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        WriteAll(name, bytes.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (!stream.eof()) {
        Refuse(name, EIO);
    }
}

} // namespace

bool OutputFile::IsStandardOutput(const std::string& target) {
    return target == "-" || target == "/dev/stdout" || target == "/dev/fd/1" ||
           target == "/proc/self/fd/1";
}

OutputFile::OutputFile(const std::string& target)
    : m_name(target.empty() ? "\"\"" : target) {
    if (IsStandardOutput(target)) {
        m_temporary = MakeFreshForStandardOutput(m_name);
        m_removed.emplace(m_temporary);
        return;
    }
    m_target = BehindLinks(target);
    const mode_t permissions = PermissionsFor(m_name, m_target);
    m_temporary = MakeFresh(m_name, FolderOf(m_name, m_target), permissions);
    m_removed.emplace(m_temporary);
}

OutputFile::~OutputFile() {
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
    }
}

void OutputFile::Commit() {
    if (IsStandardOutput(m_name)) {
        CopyToStandardOutput(m_name, m_temporary);
        return;
    }
    if (std::rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        Refuse(m_name, errno);
    }
    m_temporary.clear();
    m_removed.reset();
}

std::ostream& ReportStream(const std::string& target, std::ostream& out) {
    return OutputFile::IsStandardOutput(target) ? std::cerr : out;
}

} // namespace Program
