#include "platform/win32/HeldFile.h"

#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace win32 {

namespace {

// Whether the file still has a name: somebody may have removed it before it was held.
bool IsNamed(int descriptor) {
    struct stat file {};

    return fstat(descriptor, &file) == 0 && file.st_nlink > 0;
}

} // namespace

std::unique_ptr<HeldFile> HeldFile::Create(const std::string& path) {
    constexpr mode_t ownersAlone = 0600;
    const int descriptor =
        open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW, ownersAlone);
    if (descriptor < 0) {
        return nullptr;
    }
    std::unique_ptr<HeldFile> file(new HeldFile(descriptor));
    const bool held = flock(descriptor, LOCK_SH | LOCK_NB) == 0 && IsNamed(descriptor);
    return held ? std::move(file) : nullptr;
}

HeldFile::~HeldFile() {
    close(m_descriptor);
}

bool RemoveUnlessHeld(const std::string& path) {
    // A pipe would be waited on for its writer.
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    const bool free = descriptor < 0 || flock(descriptor, LOCK_EX | LOCK_NB) == 0;
    std::error_code failure;
    const bool removed = free && std::filesystem::remove(path, failure) && !failure;
    if (descriptor >= 0) {
        close(descriptor);
    }
    return removed;
}

} // namespace win32
