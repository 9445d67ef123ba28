#include "tests/support/GifBytes.h"

#include <algorithm>

namespace {

constexpr int ColoursPower = 3; // of the palette: 8 entries
constexpr int CodeSize = 7;     // codes of 8 bits, as long as the table is cleared in time
constexpr char ClearCode = '\x80';
constexpr char EndCode = '\x81';
constexpr std::size_t PixelsToAClear = 100;

} // namespace

const std::vector<GifBytes::Colour>& GifBytes::Palette() {
    static const std::vector<Colour> palette = {{0, 0, 0},     {255, 0, 0},    {0, 255, 0},
                                                {0, 0, 255},   {255, 255, 0},  {255, 0, 255},
                                                {0, 255, 255}, {255, 255, 255}};
    return palette;
}

GifBytes::GifBytes(int width, int height, bool hasPalette, int background, int aspect) {
    m_bytes = "GIF89a";
    Word(width);
    Word(height);
    Byte(hasPalette ? 0x80 | (ColoursPower - 1) : 0);
    Byte(background);
    Byte(aspect);
    if (hasPalette) {
        Colours(Palette());
    }
}

GifBytes& GifBytes::Application(std::string_view name, std::string_view data) {
    m_bytes += "!\xFF";
    Byte(static_cast<int>(name.size()));
    m_bytes += name;
    Blocks(std::string(data));
    return *this;
}

GifBytes& GifBytes::Control(int delay, int disposal, std::optional<int> transparent) {
    m_bytes += "!\xF9\x04";
    Byte(disposal << 2 | (transparent ? 1 : 0));
    Word(delay);
    Byte(transparent.value_or(0));
    Byte(0);
    return *this;
}

GifBytes& GifBytes::Frame(int left, int top, int width, int height, const std::vector<int>& pixels,
                          bool interlaced, const std::vector<Colour>& palette) {
    m_bytes += ',';
    Word(left);
    Word(top);
    Word(width);
    Word(height);
    Byte((interlaced ? 0x40 : 0) | (palette.empty() ? 0 : 0x80 | (ColoursPower - 1)));
    Colours(palette);
    Byte(CodeSize);
    std::string codes;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        if (i % PixelsToAClear == 0) {
            codes += ClearCode;
        }
        codes += static_cast<char>(pixels[i]);
    }
    Blocks(codes + EndCode);
    return *this;
}

GifBytes& GifBytes::Frame(int left, int top, int width, int height, int colour) {
    return Frame(left, top, width, height,
                 std::vector<int>(static_cast<std::size_t>(width * height), colour));
}

GifBytes& GifBytes::Raw(std::string_view bytes) {
    m_bytes += bytes;
    return *this;
}

void GifBytes::Colours(const std::vector<Colour>& palette) {
    for (const Colour& colour : palette) {
        for (const std::uint8_t channel : colour) {
            Byte(channel);
        }
    }
}

void GifBytes::Blocks(const std::string& data) {
    constexpr std::size_t most = 255;
    for (std::size_t i = 0; i < data.size(); i += most) {
        const std::size_t count = std::min(most, data.size() - i);
        Byte(static_cast<int>(count));
        m_bytes += data.substr(i, count);
    }
    Byte(0);
}
