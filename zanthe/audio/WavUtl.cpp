#include "zanthe/audio/WavUtl.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "zanthe/audio/WavLayout.h"
#include "zanthe/audio/WavWriter.h"

namespace Zanthe {

namespace {

using namespace WavLayout;
using Planes = std::vector<std::vector<float>>;

constexpr std::size_t BlockBytes = 65536; // a whole number of frames of either kind

std::uint32_t LittleEndianAt(const char* bytes, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = count; i-- > 0;) {
        value = value << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return value;
}

float FloatAt(const char* bytes) {
    return std::bit_cast<float>(LittleEndianAt(bytes, 4));
}

float PcmAt(const char* bytes) {
    const auto value = static_cast<std::int16_t>(LittleEndianAt(bytes, 2));
    return static_cast<float>(value) * static_cast<float>(1 / PcmScale);
}

// How one sample stands in the file.
struct SampleForm {
    std::size_t bytes;
    float (*decode)(const char* bytes);
};

// Nothing else of the header is looked at: files of the past have been written with any of it.
SampleForm FormOf(const std::array<char, HeaderBytes>& header) {
    const std::uint32_t tag = LittleEndianAt(&header[FormatTagOffset], 2);
    return tag == FloatTag ? SampleForm{4, FloatAt} : SampleForm{2, PcmAt};
}

void AppendWholeFrames(Planes& planes, const char* bytes, std::size_t count, SampleForm form) {
    for (std::size_t i = 0; i < count; ++i, bytes += Channels * form.bytes) {
        planes[0].push_back(form.decode(bytes));
        planes[1].push_back(form.decode(bytes + form.bytes));
    }
}

// A left sample at the end of the file gets the right one of the frame before for its own.
void AppendLastLeft(Planes& planes, const char* bytes, SampleForm form) {
    planes[0].push_back(form.decode(bytes));
    planes[1].push_back(planes[1].empty() ? 0.0f : planes[1].back());
}

void AppendFrames(Planes& planes, const char* bytes, std::size_t size, SampleForm form) {
    const std::size_t frameBytes = Channels * form.bytes;
    const std::size_t frames = size / frameBytes;
    AppendWholeFrames(planes, bytes, frames, form);
    if (size % frameBytes >= form.bytes) {
        AppendLastLeft(planes, bytes + frames * frameBytes, form);
    }
}

void ReadFrames(std::istream& stream, Planes& planes, SampleForm form) {
    std::vector<char> block(BlockBytes);
    // Only the last block of a file is short, so no frame is ever cut in two.
    while (stream) {
        stream.read(block.data(), static_cast<std::streamsize>(block.size()));
        AppendFrames(planes, block.data(), static_cast<std::size_t>(stream.gcount()), form);
    }
}

} // namespace

bool WavUtl::WriteWav(const std::string& path, const std::vector<std::vector<float>>& channels,
                      WavFormat format, int sampleRate) {
    if (channels.size() != Channels || channels[0].size() != channels[1].size()) {
        return false;
    }
    WavWriter writer(path, format, sampleRate);
    writer.Append(channels[0].data(), channels[1].data(), channels[0].size());
    return writer.Finish();
}

std::vector<std::vector<float>> WavUtl::ReadWav(const std::string& path) {
    Planes planes(Channels);
    std::error_code absent;
    // A pipe would be waited for, and a device may have no end.
    if (!std::filesystem::is_regular_file(path, absent)) {
        return planes;
    }
    std::ifstream stream(path, std::ios::binary);
    std::array<char, HeaderBytes> header{};
    if (stream.read(header.data(), header.size())) {
        ReadFrames(stream, planes, FormOf(header));
    }
    return planes;
}

} // namespace Zanthe
