// Any bytes as a QuickTime file of PNG images: the choice of its track, and pictures at a few times
// in an order that jumps.
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "fuzz/BytesAsFile.h"
#include "zanthe/containers/PNGMOVVideoDecoder.h"

namespace {

// The pictures of a hostile header are large, and each costs what it costs to fill.
constexpr std::int64_t kMostPixels = 1 << 20;

void ReadPictures(PNGMOVVideoDecoder& decoder) {
    const std::int64_t pixels = std::int64_t{decoder.outputWidth()} * decoder.outputHeight();
    if (pixels > kMostPixels) {
        return;
    }
    std::vector<unsigned char> rows(static_cast<std::size_t>(pixels) * 4);
    for (const int tenth : {0, 1, 3, 2, -1, 1'000'000, 0}) {
        double actualTime = -1.0;
        try {
            decoder.readFrame(Zanthe::MediaTime(tenth, 10), rows.data(), actualTime);
        } catch (const std::runtime_error&) {
            // A sample that is no picture, or none that is shown. The next one may be.
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const BytesAsFile file(data, size);
    for (const std::int32_t stream : {-1, 0, 1}) {
        if (const auto decoder = PNGMOVVideoDecoder::create(file.Path(), stream)) {
            ReadPictures(*decoder);
        }
    }
    return 0;
}
