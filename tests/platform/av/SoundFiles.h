// Whole sounds for the tests, and what the ffmpeg program makes of a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/av/ConvertedSound.h"
#include "platform/av/SoundStream.h"

// Frames of packed samples.
struct Frames {
    std::vector<std::uint8_t> bytes;
    std::size_t frameBytes = 1;

    std::size_t Count() const { return bytes.size() / frameBytes; }

    // The frames [from, from + count) as far as there are such.
    Frames Slice(std::size_t from, std::size_t count) const;

    bool operator==(const Frames& other) const { return bytes == other.bytes; }
};

constexpr std::int64_t kAll = std::int64_t{1} << 40;

// What comes from frame `from` on, at most `count` frames. A failed read, and a piece that does not
// follow the one before, fail the test.
Frames ReadFrames(av::SoundStream& stream, std::int64_t from, std::int64_t count);
Frames ReadFrames(av::ConvertedSound& sound, std::int64_t from, std::int64_t count);

// What the ffmpeg program writes, run with these arguments.
std::vector<std::uint8_t> RunProgram(const std::string& arguments);

// The file's first sound as the program decodes it, in the sample format given. `options` stand
// before the file.
Frames DecodeWithProgram(const std::string& path, AVSampleFormat sample,
                         const std::string& options = {}, const std::string& outputOptions = {});

// The largest difference of two runs of floats of the same length.
float LargestDifference(const Frames& a, const Frames& b);
