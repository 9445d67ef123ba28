// A sound kept for comparison: as many floats as the disk takes, not as the memory does.
//
//     SampleSpool spool(2);
//     spool.Append(planes, count);   // ... until the sound ends
//     spool.Read(0, 12345, 100, samples);
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

    // Reads `count` floats from the one numbered `first` on; all of them were appended.
    void Read(std::int64_t first, std::size_t count, float* samples) const;

private:
    std::string m_folder;
    int m_file;
};

// Errors: CommandError that names the temporary folder and the system's text, mostly that the disk
// is full. Thread-safety: none.
class SampleSpool {
public:
    explicit SampleSpool(int channels);

    // Appends `count` frames of the planes, one a channel.
    void Append(const std::vector<float*>& planes, std::size_t count);

    std::int64_t Frames() const { return m_frames; }

    // Reads the samples [first, first + count) of one channel. REQUIRES: within [0, Frames()).
    void Read(std::size_t channel, std::int64_t first, std::size_t count, float* samples) const;

private:
    std::vector<FloatFile> m_files; // one a channel
    std::int64_t m_frames = 0;
};

} // namespace Program
