// GIF files made by hand, block by block.
//
//     GifBytes gif(4, 2);
//     gif.Control(10, 2).Frame(0, 0, 4, 2, {1, 1, 1, 1, 2, 2, 2, 2});
//     folder.Write("a.gif", gif.Bytes());
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class GifBytes {
public:
    using Colour = std::array<std::uint8_t, 3>; // red, green, blue

    // Eight colours: black, red, green, blue, yellow, magenta, cyan, white.
    static const std::vector<Colour>& Palette();

    // With the palette above as the global one, or without any.
    GifBytes(int width, int height, bool hasPalette = true, int background = 0, int aspect = 0);

    GifBytes& Application(std::string_view name, std::string_view data);
    // delay: hundredths of a second.
    GifBytes& Control(int delay, int disposal, std::optional<int> transparent = std::nullopt);
    // `pixels` in the order of the file; fewer than there should be are fewer in the file.
    GifBytes& Frame(int left, int top, int width, int height, const std::vector<int>& pixels,
                    bool interlaced = false, const std::vector<Colour>& palette = {});
    // A frame of one colour.
    GifBytes& Frame(int left, int top, int width, int height, int colour);
    GifBytes& Raw(std::string_view bytes);

    // With the trailer.
    std::string Bytes() const { return m_bytes + ';'; }

private:
    void Byte(int value) { m_bytes += static_cast<char>(value); }

    void Word(int value) {
        Byte(value & 0xFF);
        Byte(value >> 8);
    }

    void Colours(const std::vector<Colour>& palette);
    void Blocks(const std::string& data);

    std::string m_bytes;
};
