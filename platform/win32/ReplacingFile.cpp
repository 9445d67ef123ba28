#include "platform/win32/ReplacingFile.h"

#include <cerrno>
#include <filesystem>
#include <random>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace win32 {

namespace {

namespace fs = std::filesystem;

// Short and of our own making: the target's name may be as long as the system allows already.
std::string PassingNameBeside(const fs::path& target) {
    constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz012345";
    std::random_device random;
    std::string name = ".zanthe-";
    for (int i = 0; i < 12; ++i) {
        name.push_back(letters[random() % 32]);
    }
    return (target.parent_path() / (name + ".part")).string();
}

// The file behind the links at `path`; `path` itself when nothing is there yet.
std::string BehindLinks(const std::string& path) {
    std::error_code absent;
    const fs::path target = fs::canonical(path, absent);
    return absent ? path : target.string();
}

} // namespace

ReplacingFile::ReplacingFile(const std::string& path) {
    struct stat existing {};

    const bool exists = stat(path.c_str(), &existing) == 0;
    if (exists && !S_ISREG(existing.st_mode)) {
        m_stream.reset(std::fopen(path.c_str(), "wbe"));
        return;
    }
    // Renaming asks for the folder's permission only; a file that is marked read-only stays.
    if (path.empty() || (exists && access(path.c_str(), W_OK) != 0)) {
        return;
    }
    OpenBeside(BehindLinks(path));
    if (m_stream && exists) {
        static_cast<void>(fchmod(fileno(m_stream.get()), existing.st_mode & 07777));
    }
}

ReplacingFile::~ReplacingFile() {
    m_stream.reset();
    if (!m_passingName.empty()) {
        static_cast<void>(std::remove(m_passingName.c_str()));
    }
}

void ReplacingFile::OpenBeside(const std::string& target) {
    constexpr int attempts = 16;
    for (int i = 0; i < attempts; ++i) {
        const std::string name = PassingNameBeside(target);
        m_stream.reset(std::fopen(name.c_str(), "wbxe"));
        if (m_stream) {
            m_target = target;
            m_passingName = name;
            return;
        }
        if (errno != EEXIST) {
            return;
        }
    }
}

bool ReplacingFile::Commit() {
    if (!m_stream) {
        return false;
    }
    const bool wellSoFar = std::ferror(m_stream.get()) == 0;
    const bool closed = std::fclose(m_stream.release()) == 0;
    if (!wellSoFar || !closed) {
        return false;
    }
    if (m_passingName.empty()) {
        return true;
    }
    if (std::rename(m_passingName.c_str(), m_target.c_str()) != 0) {
        return false;
    }
    m_passingName.clear();
    return true;
}

} // namespace win32
