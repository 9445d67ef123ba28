#include "tools/zanthe/SampleSpool.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "tools/zanthe/CommandError.h"

namespace Program {

namespace {

std::string TemporaryFolder() {
    const char* folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

[[noreturn]] void Refuse(const std::string& folder, int error) {
    throw CommandError(folder, "no temporary file for the sound: " +
                                   std::generic_category().message(error));
}

int OpenNameless(const std::string& folder) {
    std::string path = folder + "/zanthe-XXXXXX";
    const int file = mkostemp(path.data(), O_CLOEXEC);
    if (file < 0) {
        Refuse(folder, errno);
    }
    unlink(path.c_str());
    return file;
}

} // namespace

FloatFile::FloatFile()
    : m_folder(TemporaryFolder())
    , m_file(OpenNameless(m_folder)) {}

FloatFile::FloatFile(FloatFile&& other) noexcept
    : m_folder(std::move(other.m_folder))
    , m_file(std::exchange(other.m_file, -1)) {}

FloatFile::~FloatFile() {
    if (m_file >= 0) {
        close(m_file);
    }
}

void FloatFile::Append(const float* samples, std::size_t count) {
    const char* next = reinterpret_cast<const char*>(samples);
    std::size_t left = count * sizeof(float);
    while (left > 0) {
        const ssize_t written = write(m_file, next, left);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            Refuse(m_folder, errno);
        }
        next += written;
        left -= static_cast<std::size_t>(written);
    }
}

void FloatFile::Read(std::int64_t first, std::size_t count, float* samples) const {
    char* next = reinterpret_cast<char*>(samples);
    std::size_t left = count * sizeof(float);
    auto position = static_cast<off_t>(first) * static_cast<off_t>(sizeof(float));
    while (left > 0) {
        const ssize_t got = pread(m_file, next, left, position);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            Refuse(m_folder, got < 0 ? errno : EIO);
        }
        next += got;
        left -= static_cast<std::size_t>(got);
        position += got;
    }
}

SampleSpool::SampleSpool(int channels)
    : m_files(static_cast<std::size_t>(channels)) {}

void SampleSpool::Append(const std::vector<float*>& planes, std::size_t count) {
    for (std::size_t channel = 0; channel < m_files.size(); ++channel) {
        m_files[channel].Append(planes[channel], count);
    }
    m_frames += static_cast<std::int64_t>(count);
}

void SampleSpool::Read(std::size_t channel, std::int64_t first, std::size_t count,
                       float* samples) const {
    m_files[channel].Read(first, count, samples);
}

} // namespace Program
