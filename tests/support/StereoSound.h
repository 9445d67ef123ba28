#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "zanthe/audio/IAudioReader.h"

// Two planes of samples, compared bit for bit.
struct StereoSound {
    std::vector<float> left;
    std::vector<float> right;

    std::size_t Frames() const { return left.size(); }

    // The frames [from, from + count) as far as there are such.
    StereoSound Slice(std::size_t from, std::size_t count) const;

    void Append(const StereoSound& more);

    bool operator==(const StereoSound& other) const;
};

// What one FillAudioBuffer answers: as many frames as it says.
StereoSound ReadSpan(Zanthe::IAudioReader& reader, std::int64_t start, unsigned int frames);

// Everything from frame 0 on, in one read.
StereoSound ReadWhole(Zanthe::IAudioReader& reader);

// What the ffmpeg program decodes, mixed to two channels at the file's own rate; its encoder delay
// and padding are cut off.
StereoSound DecodeWithFFmpegProgram(const std::string& path);

// The name of a media file as a test's name.
std::string TestNameOf(const std::string& file);
