// Any bytes opened as sound and read at a few positions, which the last bytes of the input choose.
// Refusing with std::runtime_error is an answer; any other exception, a crash or a hang is not.
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "fuzz/BytesAsFile.h"
#include "zanthe/audio/ffmpeg/FFMPEGAudioReader.h"

extern "C" {
#include <libavutil/log.h>
}

namespace {

// FFmpeg comments on every damaged byte, which would cost more than reading it.
[[maybe_unused]] const bool quiet = (av_log_set_level(AV_LOG_QUIET), true);

constexpr unsigned int LongestRead = 4096; // frames
constexpr std::array SampleRates{44100, 48000, 8000, 96000};

// The last bytes of the input: a choice of rates, then one position for each read.
struct Tail {
    std::uint8_t rate;
    std::array<std::int32_t, 3> positions;
};

Tail TailOf(const std::uint8_t* data, std::size_t size) {
    Tail tail{};
    std::array<std::uint8_t, 1 + sizeof(tail.positions)> bytes{};
    if (size >= bytes.size()) {
        std::memcpy(bytes.data(), data + size - bytes.size(), bytes.size());
    }
    tail.rate = bytes[0];
    std::memcpy(tail.positions.data(), bytes.data() + 1, sizeof(tail.positions));
    return tail;
}

void Read(Zanthe::IAudioReader& reader, std::int64_t start, unsigned int count) {
    std::vector<float> left(count), right(count);
    std::vector<float*> planes{left.data(), right.data()};
    if (reader.FillAudioBuffer(start, count, planes) > count) {
        std::abort();
    }
}

// Three in four reads begin near the start, where these short inputs have their sound; the others
// anywhere in 64 bits.
void ReadAt(Zanthe::IAudioReader& reader, std::int32_t position) {
    const auto count = static_cast<unsigned int>(position) % (LongestRead + 1);
    const std::int64_t start =
        position % 4 == 0 ? position * (std::int64_t{1} << 32) : position % 65536;
    try {
        Read(reader, start, count);
    } catch (const std::runtime_error&) {
        // Damaged sound. The next read must start afresh.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const BytesAsFile file(data, size);
    const Tail tail = TailOf(data, size);
    try {
        const auto reader = Zanthe::FFMPEGAudioReader::Create(
            file.Path(), -1, SampleRates[tail.rate % SampleRates.size()]);
        for (const std::int32_t position : tail.positions) {
            ReadAt(*reader, position);
        }
    } catch (const std::runtime_error&) {
        // Not a file with sound in it.
    }
    return 0;
}
