// A GIF file's blocks, and the pixels of its frames before anything is put together. On giflib.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/wic/InputFile.h"
#include "platform/wic/Rendering.h"

namespace wic {

// The graphic control extension that stands before a frame.
struct GifControl {
    std::uint16_t delay = 0; // hundredths of a second
    std::uint8_t disposal = 0;
    std::optional<std::uint8_t> transparent; // index of the colour that is none
};

struct GifFrameEntry {
    std::int64_t offset = 0; // of its image descriptor in the file, behind the separator
    std::uint16_t left = 0;
    std::uint16_t top = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    bool hasControl = false;
    GifControl control;
};

struct GifScreen {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t pixelAspectRatio = 0; // as in the file
    std::uint8_t backgroundIndex = 0;
    std::vector<WICColor> globalPalette; // empty where the file has none
};

// The first application extension: its name, and its first block of data with the length before it.
struct GifApplication {
    std::array<std::uint8_t, 11> name{};
    std::vector<std::uint8_t> data;
};

// Opening reads through the whole file, without decoding, and keeps where its frames begin: what
// follows damage is left out, what stands before it is there. Nothing is kept of pixels.
//
// Thread-safety: none.
class GifFile {
public:
    // Null where the file does not begin as a GIF file does.
    static std::shared_ptr<GifFile> Open(std::shared_ptr<const InputFile> file);

    const GifScreen& Screen() const { return m_screen; }

    const std::optional<GifApplication>& Application() const { return m_application; }

    const std::vector<GifFrameEntry>& Frames() const { return m_frames; }

    // Writes the frame's pixels, 0xAARRGGBB a pixel and 0 for what is transparent, has no colour in
    // the palette, or is missing because the data end early. `stride`, of bytes, is a multiple of
    // 4. False where the frame has no pixels, or more than MaxSurfacePixels.
    bool Decode(std::size_t index, WICColor* pixels, std::size_t stride) const;

private:
    class Reading;

    explicit GifFile(std::shared_ptr<const InputFile> file);

    bool ReadBlocks();
    void ReadScreen(const Reading& reading);
    bool ReadExtension(Reading& reading, GifFrameEntry& next);
    bool ReadFrame(Reading& reading, GifFrameEntry& next);
    std::array<WICColor, 256> ColoursOf(const Reading& reading, const GifFrameEntry& frame) const;

    std::shared_ptr<const InputFile> m_file;
    GifScreen m_screen;
    std::optional<GifApplication> m_application;
    std::vector<GifFrameEntry> m_frames;
};

} // namespace wic
