#include "tools/zanthe/SampleSpool.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "tools/zanthe/CommandError.h"

namespace Program {

namespace {

std::string TemporaryFolder() {
    const char* folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

[[noreturn]] void Refuse(const std::string& folder) {
    throw CommandError(folder, "no temporary file for the sound: " +
                                   std::generic_category().message(errno));
}

int OpenNameless(const std::string& folder) {
    std::string path = folder + "/zanthe-XXXXXX";
    const int file = mkostemp(path.data(), O_CLOEXEC);
    if (file < 0) {
        Refuse(folder);
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
    , m_file(std::exchange(other.m_file, -1))
    , m_bytes(std::exchange(other.m_bytes, 0))
    , m_mapping(std::exchange(other.m_mapping, nullptr)) {}

FloatFile::~FloatFile() {
    if (m_mapping != nullptr) {
        munmap(m_mapping, m_bytes);
    }
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
            Refuse(m_folder);
        }
        next += written;
        left -= static_cast<std::size_t>(written);
        m_bytes += static_cast<std::size_t>(written);
    }
}

const float* FloatFile::Map() {
    if (m_bytes == 0) {
        return nullptr;
    }
    void* mapping = mmap(nullptr, m_bytes, PROT_READ, MAP_SHARED, m_file, 0);
    if (mapping == MAP_FAILED) {
        Refuse(m_folder);
    }
    m_mapping = mapping;
    return static_cast<const float*>(m_mapping);
}

SampleSpool::SampleSpool(int channels)
    : m_files(static_cast<std::size_t>(channels)) {}

void SampleSpool::Append(const std::vector<float*>& planes, std::size_t count) {
    for (std::size_t channel = 0; channel < m_files.size(); ++channel) {
        m_files[channel].Append(planes[channel], count);
    }
    m_frames += static_cast<std::int64_t>(count);
}

void SampleSpool::Seal() {
    for (FloatFile& file : m_files) {
        m_planes.push_back(file.Map());
    }
}

} // namespace Program
