// Any bytes as a legacy recording: the compound file, the AVI file in it, its codec, and pictures
// at a few times in an order that jumps.
#include <cstddef>
#include <cstdint>
#include <exception>
#include <vector>

#include "fuzz/BytesAsFile.h"
#include "platform/win32/FaultGuard.h"
#include "zanthe/containers/OrirecScreenVideoDecoder.h"

namespace {

// The pictures of a hostile header are large, and each costs what it costs to fill.
constexpr std::int64_t kMostPixels = 1 << 20;

void ReadPictures(OrirecScreenVideoDecoder& decoder) {
    const std::int64_t pixels =
        static_cast<std::int64_t>(decoder.outputWidth()) * decoder.outputHeight();
    if (pixels > kMostPixels) {
        return;
    }
    std::vector<unsigned char> rows(static_cast<std::size_t>(pixels) * 4);
    for (const int tenth : {0, 1, 5, 3, 2, 4, 4, 7, 0}) {
        double actualTime = -1.0;
        decoder.readFrame(Zanthe::MediaTime(tenth, 10), rows.data(), actualTime);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    win32::SetFaultGuards(false); // a decoder that faults is what is looked for
    const BytesAsFile file(data, size);
    try {
        ReadPictures(*OrirecScreenVideoDecoder::create(file.Path()));
    } catch (const std::exception&) {
        // The one way in which a recording may fail to open.
    }
    return 0;
}
