// Rows of pixels on their way from a decoder to the caller: converted and laid down in one go.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/wic/Rendering.h"

namespace wic {

// What the bytes of a decoded pixel mean, one byte each.
enum class PixelLayout {
    Gray,
    GrayAlpha,
    Rgb,
    Rgba,
    Bgra,
    Cmyk, // as ink: 0 is paper
};

std::size_t BytesOf(PixelLayout layout);
bool HasAlpha(PixelLayout layout);

struct PixelKind {
    PixelLayout layout = PixelLayout::Rgb;
    bool premultiplied = false;
};

// Premultiplies whole pixels of a layout with alpha, to the nearest, in place or not.
void Premultiply(PixelLayout layout, const std::uint8_t* from, std::size_t count, std::uint8_t* to);

// Values of 16 bits as the nearest ones of 8.
void NarrowToBytes(const std::uint16_t* from, std::size_t count, std::uint8_t* to);

// Takes the rows of a picture from the top and writes them into the rows of a rendering.
//
// Colours are multiplied by alpha to the nearest, ties up; a premultiplied colour that a scaler
// made brighter than its alpha is cut down to it. CMYK becomes (255 - ink) * (255 - black) / 255.
//
// Thread-safety: none.
class RowWriter {
public:
    // `kind`: of the rows that will come, rendering.width pixels each.
    RowWriter(const PixelKind& kind, const Rendering& rendering);

    // `count` rows from row `y` on, `stride` bytes apart.
    void Write(std::size_t y, std::size_t count, const std::uint8_t* rows, std::size_t stride);

private:
    using Pack = void (*)(const std::uint8_t* from, std::size_t count, std::uint8_t* to);

    static Pack PackOf(const PixelKind& kind, const WICPixelFormatGUID& format);
    void WriteTurned(std::size_t y, std::size_t count, const std::uint8_t* rows,
                     std::size_t stride);
    template <std::size_t Bytes>
    void Scatter(std::size_t y, std::size_t count);

    // Rows that are turned together: by a quarter turn they become columns, and so many pixels of
    // each line then lie side by side.
    static constexpr std::size_t Block = 16;

    Rendering m_rendering;
    Pack m_pack;
    std::size_t m_pixelBytes; // of the rendering's format
    std::unique_ptr<std::uint8_t[]> m_scratch;
};

} // namespace wic
