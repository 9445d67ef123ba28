#include "fuzz/BytesAsFile.h"

#include <cerrno>
#include <system_error>

#include <sys/mman.h>
#include <unistd.h>

BytesAsFile::BytesAsFile(const std::uint8_t* data, std::size_t size)
    : m_descriptor(memfd_create("fuzz-input", MFD_CLOEXEC)) {
    if (m_descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "memfd_create");
    }
    for (std::size_t written = 0; written < size;) {
        const ssize_t count = write(m_descriptor, data + written, size - written);
        if (count < 0) {
            const int error = errno;
            close(m_descriptor);
            throw std::system_error(error, std::generic_category(), "write");
        }
        written += static_cast<std::size_t>(count);
    }
}

BytesAsFile::~BytesAsFile() {
    close(m_descriptor);
}

std::string BytesAsFile::Path() const {
    return "/proc/self/fd/" + std::to_string(m_descriptor);
}
