#include "tools/zanthe/DisplayPicture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

namespace Program {

namespace {

using Zanthe::Bitmap;

constexpr int BytesPerPixel = 4;
constexpr int LongestSide = 16384;

int Stretched(int side, double factor) {
    return static_cast<int>(std::clamp(std::round(side * factor), 1.0, double{LongestSide}));
}

// Before the turn.
Size SquarePixelSize(Size stored, const VideoFacts& facts) {
    if (facts.aspectNumerator <= 0 || facts.aspectDenominator <= 0 ||
        facts.aspectNumerator == facts.aspectDenominator) {
        return stored;
    }
    const double aspect =
        static_cast<double>(facts.aspectNumerator) / static_cast<double>(facts.aspectDenominator);
    const bool wider = aspect > 1;
    const int side = wider ? stored.width : stored.height;
    const double factor = wider ? aspect : 1 / aspect;
    if (side * factor > LongestSide) {
        return wider ? Size{stored.width, Stretched(stored.height, 1 / factor)}
                     : Size{Stretched(stored.width, 1 / factor), stored.height};
    }
    return wider ? Size{Stretched(side, factor), stored.height}
                 : Size{stored.width, Stretched(side, factor)};
}

bool IsQuarterTurn(const VideoFacts& facts) {
    return facts.rotation == 90 || facts.rotation == 270;
}

void MakeOpaque(Bitmap& bitmap) {
    unsigned char* const bits = bitmap.GetBits();
    const std::size_t bytes =
        static_cast<std::size_t>(bitmap.GetStride()) * static_cast<std::size_t>(bitmap.GetHeight());
    for (std::size_t i = BytesPerPixel - 1; i < bytes; i += BytesPerPixel) {
        bits[i] = 0xFF;
    }
}

// Where the pixel of the turned picture at (x, y) stands in the picture of `size`.
std::pair<int, int> SourceOf(int x, int y, Size size, int rotation) {
    switch (rotation) {
    case 90:
        return {y, size.height - 1 - x};
    case 180:
        return {size.width - 1 - x, size.height - 1 - y};
    case 270:
        return {size.width - 1 - y, x};
    default:
        return {x, y};
    }
}

BitmapPtr Turned(BitmapPtr picture, const VideoFacts& facts) {
    if (facts.rotation == 0) {
        return picture;
    }
    const Size from{picture->GetWidth(), picture->GetHeight()};
    const Size to = IsQuarterTurn(facts) ? Size{from.height, from.width} : from;
    auto turned = std::make_unique<Bitmap>(to.width, to.height, picture->GetPreMultipliedAlpha());
    for (int y = 0; y < to.height; ++y) {
        unsigned char* row = turned->GetBits() + std::ptrdiff_t{turned->GetStride()} * y;
        for (int x = 0; x < to.width; ++x) {
            const auto [fromX, fromY] = SourceOf(x, y, from, facts.rotation);
            std::memcpy(row + std::ptrdiff_t{x} * BytesPerPixel,
                        picture->GetBits() + std::ptrdiff_t{picture->GetStride()} * fromY +
                            std::ptrdiff_t{fromX} * BytesPerPixel,
                        BytesPerPixel);
        }
    }
    return turned;
}

} // namespace

Size DisplaySize(const VideoFacts& facts) {
    const Size square = SquarePixelSize({facts.width, facts.height}, facts);
    return IsQuarterTurn(facts) ? Size{square.height, square.width} : square;
}

BitmapPtr AsStored(const LockedPixels& pixels, const VideoFacts& facts) {
    auto picture = std::make_unique<Bitmap>(pixels.Width(), pixels.Height(),
                                            facts.alpha == Alpha::Premultiplied);
    const auto rowBytes = static_cast<std::size_t>(picture->GetStride());
    for (int y = 0; y < pixels.Height(); ++y) {
        std::memcpy(picture->GetBits() + rowBytes * static_cast<std::size_t>(y), pixels.Row(y),
                    rowBytes);
    }
    if (facts.alpha == Alpha::None) {
        MakeOpaque(*picture);
    }
    return picture;
}

BitmapPtr AsShown(const LockedPixels& pixels, const VideoFacts& facts) {
    BitmapPtr picture = AsStored(pixels, facts);
    const Size stored{pixels.Width(), pixels.Height()};
    const Size square = SquarePixelSize(stored, facts);
    if (square == stored) {
        return Turned(std::move(picture), facts);
    }
    return Turned(Scaled(*picture, square), facts);
}

} // namespace Program
