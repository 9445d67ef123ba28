// An input of a fuzz target as a file that can be opened by its path, without touching a disk.
//
//     BytesAsFile file(data, size);
//     auto planes = Zanthe::WavUtl::ReadWav(file.Path());
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// The file lives in memory and goes with its object; further opens of the path read from the start.
class BytesAsFile {
public:
    // Throws std::system_error when the system gives no such file.
    BytesAsFile(const std::uint8_t* data, std::size_t size);
    BytesAsFile(const BytesAsFile&) = delete;
    BytesAsFile& operator=(const BytesAsFile&) = delete;
    ~BytesAsFile();

    // Valid within this process, as long as the object lives.
    std::string Path() const;

private:
    int m_descriptor;
};
