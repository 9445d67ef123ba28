// A sound kept for comparison: as many floats as the disk takes, not as the memory does.
//
//     SampleSpool spool(2);
//     spool.Append(planes, count);   // ... until the sound ends
//     spool.Seal();
//     spool.Plane(0)[12345];
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Program {

// A file of floats without a name: it goes with its last descriptor, however the program ends.
class FloatFile {
public:
    // In the folder for temporary files ($TMPDIR, else /tmp).
    FloatFile();
    FloatFile(FloatFile&& other) noexcept;
    FloatFile(const FloatFile&) = delete;
    FloatFile& operator=(const FloatFile&) = delete;
    ~FloatFile();

    void Append(const float* samples, std::size_t count);

    // Maps what was appended; it stays valid as long as this object. Null when that is nothing.
    const float* Map();

private:
    std::string m_folder;
    int m_file;
    std::size_t m_bytes = 0;
    void* m_mapping = nullptr;
};

// Errors: CommandError that names the temporary folder and the system's text, mostly that the disk
// is full. Thread-safety: none.
class SampleSpool {
public:
    explicit SampleSpool(int channels);

    // Appends `count` frames of the planes, one a channel.
    void Append(const std::vector<float*>& planes, std::size_t count);

    // No Append after this, no Plane before.
    void Seal();

    std::int64_t Frames() const { return m_frames; }

    // The samples of one channel, [0, Frames()).
    const float* Plane(std::size_t channel) const { return m_planes[channel]; }

private:
    std::vector<FloatFile> m_files; // one a channel
    std::vector<const float*> m_planes;
    std::int64_t m_frames = 0;
};

} // namespace Program
