#include "tests/support/StereoSound.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace {

bool SameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
}

std::vector<float> Part(const std::vector<float>& plane, std::size_t from, std::size_t count) {
    const std::size_t begin = std::min(from, plane.size());
    const std::size_t end = begin + std::min(count, plane.size() - begin);
    return {plane.begin() + static_cast<std::ptrdiff_t>(begin),
            plane.begin() + static_cast<std::ptrdiff_t>(end)};
}

} // namespace

StereoSound StereoSound::Slice(std::size_t from, std::size_t count) const {
    return {Part(left, from, count), Part(right, from, count)};
}

void StereoSound::Append(const StereoSound& more) {
    left.insert(left.end(), more.left.begin(), more.left.end());
    right.insert(right.end(), more.right.begin(), more.right.end());
}

bool StereoSound::operator==(const StereoSound& other) const {
    return SameBits(left, other.left) && SameBits(right, other.right);
}

StereoSound ReadSpan(Zanthe::IAudioReader& reader, std::int64_t start, unsigned int frames) {
    StereoSound sound{std::vector<float>(frames), std::vector<float>(frames)};
    std::vector<float*> planes{sound.left.data(), sound.right.data()};
    return sound.Slice(0, reader.FillAudioBuffer(start, frames, planes));
}

StereoSound ReadWhole(Zanthe::IAudioReader& reader) {
    unsigned int frames = 15 * 48000;
    StereoSound sound = ReadSpan(reader, 0, frames);
    while (sound.Frames() == frames) {
        frames *= 4;
        sound = ReadSpan(reader, 0, frames);
    }
    return sound;
}

StereoSound DecodeWithFFmpegProgram(const std::string& path) {
    const std::string command =
        "ffmpeg -nostdin -v error -i '" + path + "' -map 0:a:0 -ac 2 -f f32le -";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    if (!pipe) {
        throw std::runtime_error("cannot run ffmpeg");
    }
    StereoSound sound;
    float frame[2];
    while (std::fread(frame, sizeof frame, 1, pipe.get()) == 1) {
        sound.left.push_back(frame[0]);
        sound.right.push_back(frame[1]);
    }
    return sound;
}

std::string TestNameOf(const std::string& file) {
    std::string name = std::filesystem::path(file).stem().string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
    return name;
}
