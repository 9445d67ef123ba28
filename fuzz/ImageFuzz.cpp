// Any bytes as a still picture: the choice of a decoder, its header, its pixels, scaled and not.
// Small pictures alone are decoded; that large ones are bounded, tests show.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>

#include "fuzz/BytesAsFile.h"
#include "platform/win32/Text.h"
#include "zanthe/images/WICImageLoader.h"
#include "zanthe/images/WICImageReader.h"

namespace {

constexpr std::int64_t MostPixels = 1 << 20;

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// A decoded picture is one of premultiplied colours.
void RequirePremultiplied(const Zanthe::Bitmap& bitmap) {
    const std::int64_t bytes = std::int64_t{bitmap.GetStride()} * bitmap.GetHeight();
    for (std::int64_t i = 0; i < bytes; i += 4) {
        const unsigned char* pixel = bitmap.GetBits() + i;
        Require(pixel[0] <= pixel[3] && pixel[1] <= pixel[3] && pixel[2] <= pixel[3]);
    }
}

void LoadAt(const CStringW& path, int maxDimension) {
    Zanthe::WICImageLoader loader(path, maxDimension);
    Require(loader.GetWidth() >= 0 && loader.GetHeight() >= 0);
    loader.Load(0.0, 0, 0);
    // A GIF file need not have a picture; one that is shown has an area.
    Require(loader.GetWidth() >= 1 && loader.GetHeight() >= 1);
    RequirePremultiplied(*loader.GetBitmap());
}

bool IsSmall(const CStringW& path) {
    Zanthe::WICImageReader reader(path);
    reader.Open();
    int width = 0;
    int height = 0;
    reader.GetSize(width, height);
    return std::int64_t{width} * height <= MostPixels;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const BytesAsFile file(data, size);
    const CStringW path = win32::Utf8ToWide(file.Path());
    for (const int maxDimension : {4096, 7}) {
        try {
            if (IsSmall(path)) {
                LoadAt(path, maxDimension);
            }
        } catch (const std::exception&) {
            // No picture, or one that cannot be decoded.
        }
    }
    return 0;
}
