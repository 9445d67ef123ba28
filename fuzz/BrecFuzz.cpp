// Any bytes as a ".brec" recording: its tracks, pictures of each at a few times in an order that
// jumps, and sound of each from a few frames on.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "fuzz/BytesAsFile.h"
#include "platform/brec/Reader.h"

namespace {

// The pictures of a hostile header are large, and each costs what it costs to fill.
constexpr std::uint64_t kMostPixels = 1 << 20;
constexpr unsigned int kFrames = 3000;

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void ReadPictures(BREC::MP4TrackReader& track) {
    const std::uint64_t pixels = std::uint64_t{track.width()} * track.height();
    if (pixels > kMostPixels) {
        return;
    }
    std::vector<unsigned char> rows(static_cast<std::size_t>(pixels) * 4);
    for (const double seconds : {0.0, 0.1, 0.35, 0.2, -1.0, 1e9, 0.05}) {
        double outTime = -1.0;
        const bool shown = track.decodeFrameAtTime(
            seconds, rows.data(), static_cast<unsigned int>(rows.size()), &outTime, -1.0, 0.0, 0.0);
        Require(shown != (outTime == -1.0));
    }
}

void ReadSound(BREC::MP4TrackReader& track) {
    std::vector<unsigned char> bytes(std::size_t{kFrames} * 4);
    const std::uint64_t length = track.lengthInFrames();
    for (const std::uint64_t start : {std::uint64_t{0}, std::uint64_t{1000}, length / 2, length - 1,
                                      length, std::uint64_t{1} << 63}) {
        Require(track.fillAudioBuffer(start, kFrames, bytes.data()) <= kFrames);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const BytesAsFile file(data, size);
    const auto format = BREC::AudioFormat::create16BitSignedInterleaved(44100, 2);
    const auto reader = BREC::Reader::create(file.Path(), format, nullptr);
    if (reader == nullptr) {
        return 0;
    }
    int left = 8; // tracks: a header may promise any number
    for (const auto& track : reader->tracks()) {
        if (left-- == 0) {
            break;
        }
        ReadPictures(*track);
        ReadSound(*track);
    }
    return 0;
}
