#include "platform/vfw/Dib.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

#include "platform/av/PictureConversion.h"

namespace vfw {

namespace {

constexpr int kBgraBytes = 4;

// Rows of 4-byte pixels that nobody has to clear first.
struct BgraRows {
    explicit BgraRows(const av::Picture& picture)
        : stride(static_cast<std::ptrdiff_t>(kBgraBytes) * picture.Width())
        , bytes(new std::uint8_t[static_cast<std::size_t>(stride) * picture.Height()]) {}

    std::ptrdiff_t stride;
    std::unique_ptr<std::uint8_t[]> bytes;
};

void WriteRow16(const std::uint8_t* from, std::uint8_t* to, int width) {
    for (int x = 0; x < width; ++x, from += kBgraBytes, to += 2) {
        const auto pixel =
            static_cast<std::uint16_t>((from[2] >> 3) << 10 | (from[1] >> 3) << 5 | from[0] >> 3);
        std::memcpy(to, &pixel, sizeof pixel);
    }
}

void WriteRow24(const std::uint8_t* from, std::uint8_t* to, int width) {
    for (int x = 0; x < width; ++x, from += kBgraBytes, to += 3) {
        std::memcpy(to, from, 3);
    }
}

void WriteRow(const std::uint8_t* from, std::uint8_t* to, int width, int bits) {
    switch (bits) {
    case 16:
        return WriteRow16(from, to, width);
    case 24:
        return WriteRow24(from, to, width);
    default:
        std::memcpy(to, from, static_cast<std::size_t>(width) * kBgraBytes);
    }
}

// From the start of one row to that of the next, in bytes.
std::ptrdiff_t StrideOf(const BITMAPINFOHEADER& format) {
    return (static_cast<std::ptrdiff_t>(format.biWidth) * format.biBitCount / 8 + 3) / 4 * 4;
}

} // namespace

int RowsOf(const BITMAPINFOHEADER& format) {
    return std::abs(std::max(format.biHeight, -std::numeric_limits<LONG>::max()));
}

bool CanWriteDib(const BITMAPINFOHEADER& format, int width, int height) {
    const bool depth =
        format.biBitCount == 16 || format.biBitCount == 24 || format.biBitCount == 32;
    return depth && format.biCompression == BI_RGB && format.biWidth == width &&
           RowsOf(format) == height && width > 0 && height > 0;
}

bool WriteDib(const av::Picture& picture, const BITMAPINFOHEADER& format, void* rows) {
    const int height = RowsOf(format);
    if (!CanWriteDib(format, format.biWidth, height)) {
        return false;
    }
    auto* const to = static_cast<std::uint8_t*>(rows);
    const std::ptrdiff_t stride = StrideOf(format);
    const bool bottomFirst = format.biHeight > 0;
    if (format.biBitCount == 32 && picture.Width() == format.biWidth &&
        picture.Height() == height) {
        return av::ConvertToBgra(picture, bottomFirst ? to + (height - 1) * stride : to,
                                 bottomFirst ? -stride : stride);
    }
    const BgraRows bgra(picture);
    if (!av::ConvertToBgra(picture, bgra.bytes.get(), bgra.stride)) {
        return false;
    }
    const int width = std::min(picture.Width(), format.biWidth);
    for (int y = 0; y < std::min(picture.Height(), height); ++y) {
        const int row = bottomFirst ? height - 1 - y : y;
        WriteRow(bgra.bytes.get() + y * bgra.stride, to + row * stride, width, format.biBitCount);
    }
    return true;
}

} // namespace vfw
