#include "platform/wic/PixelRows.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace wic {

namespace {

struct Pixel {
    unsigned int blue;
    unsigned int green;
    unsigned int red;
    unsigned int alpha;
};

// a * b / 255 to the nearest, for a and b up to 255.
constexpr unsigned int Scaled(unsigned int a, unsigned int b) {
    const unsigned int product = a * b + 128;
    return (product + (product >> 8)) >> 8;
}

// How a pixel is read from its bytes.
struct GrayReader {
    static constexpr std::size_t Bytes = 1;

    static Pixel Get(const std::uint8_t* at) { return {at[0], at[0], at[0], 255}; }
};

struct GrayAlphaReader {
    static constexpr std::size_t Bytes = 2;

    static Pixel Get(const std::uint8_t* at) { return {at[0], at[0], at[0], at[1]}; }
};

struct RgbReader {
    static constexpr std::size_t Bytes = 3;

    static Pixel Get(const std::uint8_t* at) { return {at[2], at[1], at[0], 255}; }
};

struct RgbaReader {
    static constexpr std::size_t Bytes = 4;

    static Pixel Get(const std::uint8_t* at) { return {at[2], at[1], at[0], at[3]}; }
};

struct BgraReader {
    static constexpr std::size_t Bytes = 4;

    static Pixel Get(const std::uint8_t* at) { return {at[0], at[1], at[2], at[3]}; }
};

struct CmykReader {
    static constexpr std::size_t Bytes = 4;

    static Pixel Get(const std::uint8_t* at) {
        const unsigned int light = 255U - at[3];
        return {Scaled(255U - at[2], light), Scaled(255U - at[1], light),
                Scaled(255U - at[0], light), 255};
    }
};

// What is done with the colours before they are written.
struct Keep {
    static Pixel Of(const Pixel& pixel) { return pixel; }
};

struct Multiply {
    static Pixel Of(const Pixel& pixel) {
        return {Scaled(pixel.blue, pixel.alpha), Scaled(pixel.green, pixel.alpha),
                Scaled(pixel.red, pixel.alpha), pixel.alpha};
    }
};

struct CutToAlpha {
    static Pixel Of(const Pixel& pixel) {
        return {std::min(pixel.blue, pixel.alpha), std::min(pixel.green, pixel.alpha),
                std::min(pixel.red, pixel.alpha), pixel.alpha};
    }
};

struct Divide {
    static Pixel Of(const Pixel& pixel) {
        return {Divided(pixel.blue, pixel.alpha), Divided(pixel.green, pixel.alpha),
                Divided(pixel.red, pixel.alpha), pixel.alpha};
    }

    static unsigned int Divided(unsigned int colour, unsigned int alpha) {
        return alpha != 0 ? std::min(255U, (colour * 255 + alpha / 2) / alpha) : 0;
    }
};

template <typename Reader, typename Change, std::size_t OutBytes>
void PackPixels(const std::uint8_t* from, std::size_t count, std::uint8_t* to) {
    for (std::size_t i = 0; i < count; ++i, from += Reader::Bytes, to += OutBytes) {
        const Pixel pixel = Change::Of(Reader::Get(from));
        to[0] = static_cast<std::uint8_t>(pixel.blue);
        to[1] = static_cast<std::uint8_t>(pixel.green);
        to[2] = static_cast<std::uint8_t>(pixel.red);
        if constexpr (OutBytes == 4) {
            to[3] = static_cast<std::uint8_t>(pixel.alpha);
        }
    }
}

using PackFunction = void (*)(const std::uint8_t*, std::size_t, std::uint8_t*);

template <typename Change, std::size_t OutBytes>
PackFunction PackFrom(PixelLayout layout) {
    switch (layout) {
    case PixelLayout::Gray:
        return PackPixels<GrayReader, Change, OutBytes>;
    case PixelLayout::GrayAlpha:
        return PackPixels<GrayAlphaReader, Change, OutBytes>;
    case PixelLayout::Rgb:
        return PackPixels<RgbReader, Change, OutBytes>;
    case PixelLayout::Rgba:
        return PackPixels<RgbaReader, Change, OutBytes>;
    case PixelLayout::Bgra:
        return PackPixels<BgraReader, Change, OutBytes>;
    case PixelLayout::Cmyk:
        break;
    }
    return PackPixels<CmykReader, Change, OutBytes>;
}

template <std::size_t ColourBytes>
void PremultiplyPixels(const std::uint8_t* from, std::size_t count, std::uint8_t* to) {
    constexpr std::size_t bytes = ColourBytes + 1;
    for (std::size_t i = 0; i < count; ++i, from += bytes, to += bytes) {
        const std::uint8_t alpha = from[ColourBytes];
        for (std::size_t band = 0; band < ColourBytes; ++band) {
            to[band] = static_cast<std::uint8_t>(Scaled(from[band], alpha));
        }
        to[ColourBytes] = alpha;
    }
}

} // namespace

std::size_t BytesOf(PixelLayout layout) {
    switch (layout) {
    case PixelLayout::Gray:
        return 1;
    case PixelLayout::GrayAlpha:
        return 2;
    case PixelLayout::Rgb:
        return 3;
    default:
        return 4;
    }
}

bool HasAlpha(PixelLayout layout) {
    return layout == PixelLayout::GrayAlpha || layout == PixelLayout::Rgba ||
           layout == PixelLayout::Bgra;
}

void Premultiply(PixelLayout layout, const std::uint8_t* from, std::size_t count,
                 std::uint8_t* to) {
    if (layout == PixelLayout::GrayAlpha) {
        PremultiplyPixels<1>(from, count, to);
    } else {
        PremultiplyPixels<3>(from, count, to);
    }
}

void NarrowToBytes(const std::uint16_t* from, std::size_t count, std::uint8_t* to) {
    // v * 255 / 65535 to the nearest, for every v.
    std::transform(from, from + count, to, [](std::uint32_t value) {
        return static_cast<std::uint8_t>((value * 255 + 32895) >> 16);
    });
}

RowWriter::RowWriter(const PixelKind& kind, const Rendering& rendering)
    : m_rendering(rendering)
    , m_pack(PackOf(kind, rendering.format))
    , m_pixelBytes(BitsPerPixel(rendering.format) / 8) {
    if (!rendering.turn.IsNone()) {
        m_scratch =
            std::make_unique_for_overwrite<std::uint8_t[]>(Block * rendering.width * m_pixelBytes);
    }
}

RowWriter::Pack RowWriter::PackOf(const PixelKind& kind, const WICPixelFormatGUID& format) {
    const bool opaque = !HasAlpha(kind.layout);
    if (format == GUID_WICPixelFormat32bppPBGRA) {
        return opaque               ? PackFrom<Keep, 4>(kind.layout)
               : kind.premultiplied ? PackFrom<CutToAlpha, 4>(kind.layout)
                                    : PackFrom<Multiply, 4>(kind.layout);
    }
    const bool divides = !opaque && kind.premultiplied;
    if (format == GUID_WICPixelFormat32bppBGRA) {
        return divides ? PackFrom<Divide, 4>(kind.layout) : PackFrom<Keep, 4>(kind.layout);
    }
    return divides ? PackFrom<Divide, 3>(kind.layout) : PackFrom<Keep, 3>(kind.layout);
}

void RowWriter::Write(std::size_t y, std::size_t count, const std::uint8_t* rows,
                      std::size_t stride) {
    if (!m_rendering.turn.IsNone()) {
        WriteTurned(y, count, rows, stride);
        return;
    }
    for (std::size_t row = 0; row < count; ++row) {
        m_pack(rows + row * stride, m_rendering.width,
               m_rendering.bits + (y + row) * m_rendering.stride);
    }
}

void RowWriter::WriteTurned(std::size_t y, std::size_t count, const std::uint8_t* rows,
                            std::size_t stride) {
    for (std::size_t done = 0; done < count;) {
        const std::size_t step = std::min(Block, count - done);
        for (std::size_t row = 0; row < step; ++row) {
            m_pack(rows + (done + row) * stride, m_rendering.width,
                   m_scratch.get() + row * m_rendering.width * m_pixelBytes);
        }
        if (m_pixelBytes == 4) {
            Scatter<4>(y + done, step);
        } else {
            Scatter<3>(y + done, step);
        }
        done += step;
    }
}

// The turn is affine: where the first pixel goes and how far a step to the right and a step down
// take it is all there is to know.
template <std::size_t Bytes>
void RowWriter::Scatter(std::size_t y, std::size_t count) {
    const std::size_t width = m_rendering.width;
    const auto at = [&](std::size_t x, std::size_t row) {
        const PixelPlace place = m_rendering.turn.Place({x, row}, width, m_rendering.height);
        return static_cast<std::ptrdiff_t>(place.y * m_rendering.stride + place.x * Bytes);
    };
    const std::ptrdiff_t start = at(0, y);
    const std::ptrdiff_t right = width > 1 ? at(1, y) - start : 0;
    const std::ptrdiff_t down = count > 1 ? at(0, y + 1) - start : 0;
    const std::size_t rowBytes = width * Bytes;
    for (std::size_t x = 0; x < width; ++x) {
        std::uint8_t* to = m_rendering.bits + start + right * static_cast<std::ptrdiff_t>(x);
        const std::uint8_t* from = m_scratch.get() + x * Bytes;
        for (std::size_t row = 0; row < count; ++row, to += down, from += rowBytes) {
            std::memcpy(to, from, Bytes);
        }
    }
}

} // namespace wic
