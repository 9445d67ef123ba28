#include "platform/wic/GifFile.h"

#include <algorithm>
#include <utility>

#include <gif_lib.h>

namespace wic {

namespace {

constexpr int TransparencyFlag = 1;
constexpr int BlockHeader = 1; // giflib's blocks carry their length before them
constexpr int DescriptorBytes = 9;
constexpr int CodeSizeBytes = 1;

WICColor Opaque(const GifColorType& colour) {
    return 0xFF000000U | static_cast<WICColor>(colour.Red) << 16 |
           static_cast<WICColor>(colour.Green) << 8 | colour.Blue;
}

std::vector<WICColor> ColoursOf(const ColorMapObject* map) {
    std::vector<WICColor> colours;
    for (int i = 0; map != nullptr && i < map->ColorCount; ++i) {
        colours.push_back(Opaque(map->Colors[i]));
    }
    return colours;
}

// The rows of a frame in the order of the file.
class RowOrder {
public:
    RowOrder(int height, bool interlaced)
        : m_height(height)
        , m_step(interlaced ? 8 : 1)
        , m_pass(interlaced ? 0 : LastPass) {}

    int Row() const { return m_row; } // at or past the height: there are no more

    void Next() {
        m_row += m_step;
        while (m_row >= m_height && m_pass < LastPass) {
            ++m_pass;
            m_row = 8 >> m_pass;
            m_step = m_row * 2;
        }
    }

private:
    static constexpr int LastPass = 3;

    int m_height;
    int m_row = 0;
    int m_step;
    int m_pass;
};

} // namespace

// giflib at work on the file, from the start of it. It reads what it is asked to and nothing ahead,
// so the position in the file is always ours to know and to change.
class GifFile::Reading {
public:
    explicit Reading(std::shared_ptr<const InputFile> file)
        : m_reader(std::move(file))
        , m_gif(DGifOpen(&m_reader, ReadBytes, nullptr)) {}

    GifFileType* Gif() const { return m_gif.get(); } // null: it is no GIF file

    BufferedReader& Reader() { return m_reader; }

    // Passes over blocks up to the empty one that ends them; false at the end of the file.
    bool SkipBlocks() {
        std::uint8_t length = 0;
        std::array<std::uint8_t, 255> block;
        do {
            if (!m_reader.ReadByte(length) || m_reader.Read(block.data(), length) != length) {
                return false;
            }
        } while (length > 0);
        return true;
    }

private:
    static int ReadBytes(GifFileType* gif, GifByteType* buffer, int count) {
        auto* reader = static_cast<BufferedReader*>(gif->UserData);
        return static_cast<int>(reader->Read(buffer, static_cast<std::size_t>(count)));
    }

    struct Close {
        void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
    };

    BufferedReader m_reader;
    std::unique_ptr<GifFileType, Close> m_gif;
};

std::shared_ptr<GifFile> GifFile::Open(std::shared_ptr<const InputFile> file) {
    std::shared_ptr<GifFile> gif(new GifFile(std::move(file)));
    return gif->ReadBlocks() ? gif : nullptr;
}

GifFile::GifFile(std::shared_ptr<const InputFile> file)
    : m_file(std::move(file)) {}

bool GifFile::ReadBlocks() {
    Reading reading(m_file);
    if (reading.Gif() == nullptr) {
        return false;
    }
    ReadScreen(reading);
    GifFrameEntry next;
    bool goesOn = true;
    while (goesOn) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        goesOn = DGifGetRecordType(reading.Gif(), &type) == GIF_OK;
        if (goesOn && type == EXTENSION_RECORD_TYPE) {
            goesOn = ReadExtension(reading, next);
        } else if (goesOn && type == IMAGE_DESC_RECORD_TYPE) {
            goesOn = ReadFrame(reading, next);
        } else {
            goesOn = false; // the end, or bytes that are no block
        }
    }
    return true;
}

void GifFile::ReadScreen(const Reading& reading) {
    const GifFileType& gif = *reading.Gif();
    m_screen.width = static_cast<std::uint16_t>(gif.SWidth);
    m_screen.height = static_cast<std::uint16_t>(gif.SHeight);
    m_screen.pixelAspectRatio = gif.AspectByte;
    m_screen.backgroundIndex = static_cast<std::uint8_t>(gif.SBackGroundColor);
    m_screen.globalPalette = wic::ColoursOf(gif.SColorMap);
}

// What the extension says of the frame after it goes into `next`.
bool GifFile::ReadExtension(Reading& reading, GifFrameEntry& next) {
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(reading.Gif(), &code, &block) != GIF_OK) {
        return false;
    }
    if (block == nullptr) {
        return true;
    }
    const std::size_t length = block[0];
    const GifByteType* bytes = block + BlockHeader;
    if (code == GRAPHICS_EXT_FUNC_CODE && length >= 4) {
        next.hasControl = true;
        next.control.disposal = static_cast<std::uint8_t>(bytes[0] >> 2 & 7);
        next.control.delay = static_cast<std::uint16_t>(bytes[1] | bytes[2] << 8);
        next.control.transparent = (bytes[0] & TransparencyFlag) != 0
                                       ? std::optional<std::uint8_t>(bytes[3])
                                       : std::nullopt;
    } else if (code == PLAINTEXT_EXT_FUNC_CODE) {
        next = {}; // the control before a text is the text's
    } else if (code == APPLICATION_EXT_FUNC_CODE && !m_application && length == 11) {
        GifApplication application;
        std::copy(bytes, bytes + length, application.name.begin());
        if (DGifGetExtensionNext(reading.Gif(), &block) != GIF_OK) {
            return false;
        }
        if (block != nullptr) {
            application.data.assign(block, block + BlockHeader + block[0]);
        }
        m_application = std::move(application);
        if (block == nullptr) {
            return true;
        }
    }
    return reading.SkipBlocks();
}

bool GifFile::ReadFrame(Reading& reading, GifFrameEntry& next) {
    next.offset = reading.Reader().Position();
    if (DGifGetImageHeader(reading.Gif()) != GIF_OK) {
        return false;
    }
    const GifImageDesc& image = reading.Gif()->Image;
    next.left = static_cast<std::uint16_t>(image.Left);
    next.top = static_cast<std::uint16_t>(image.Top);
    next.width = static_cast<std::uint16_t>(image.Width);
    next.height = static_cast<std::uint16_t>(image.Height);
    const ColorMapObject* colours = image.ColorMap;
    const int colourBytes = colours != nullptr ? colours->ColorCount * 3 : 0;
    // Not from where giflib stands: whether it has read the code size by now is its own affair.
    reading.Reader().MoveTo(next.offset + DescriptorBytes + colourBytes + CodeSizeBytes);
    m_frames.push_back(std::exchange(next, {}));
    return reading.SkipBlocks();
}

std::array<WICColor, 256> GifFile::ColoursOf(const Reading& reading,
                                             const GifFrameEntry& frame) const {
    const ColorMapObject* local = reading.Gif()->Image.ColorMap;
    const std::vector<WICColor> palette =
        local != nullptr ? wic::ColoursOf(local) : m_screen.globalPalette;
    std::array<WICColor, 256> colours{};
    std::copy(palette.begin(), palette.end(), colours.begin());
    if (palette.empty()) {
        // A file without any colours leaves them to the reader.
        for (std::size_t i = 0; i < colours.size(); ++i) {
            colours[i] = 0xFF000000U | static_cast<WICColor>(i * 0x010101U);
        }
    }
    if (frame.control.transparent) {
        colours[*frame.control.transparent] = 0;
    }
    return colours;
}

bool GifFile::Decode(std::size_t index, WICColor* pixels, std::size_t stride) const {
    const GifFrameEntry& frame = m_frames[index];
    const std::size_t width = frame.width;
    if (width == 0 || frame.height == 0 || width * frame.height > MaxSurfacePixels) {
        return false;
    }
    const auto row = [&](std::size_t y) { return pixels + y * (stride / sizeof(WICColor)); };
    for (std::size_t y = 0; y < frame.height; ++y) {
        std::fill_n(row(y), width, 0);
    }
    Reading reading(m_file);
    if (reading.Gif() == nullptr) {
        return false;
    }
    reading.Reader().MoveTo(frame.offset);
    if (DGifGetImageDesc(reading.Gif()) != GIF_OK) {
        return true; // the data have not even begun
    }
    const std::array<WICColor, 256> colours = ColoursOf(reading, frame);
    std::vector<GifPixelType> line(width);
    RowOrder order(frame.height, reading.Gif()->Image.Interlace);
    for (; order.Row() < frame.height; order.Next()) {
        if (DGifGetLine(reading.Gif(), line.data(), frame.width) != GIF_OK) {
            break;
        }
        std::transform(line.begin(), line.end(), row(static_cast<std::size_t>(order.Row())),
                       [&](GifPixelType pixel) { return colours[pixel]; });
    }
    return true;
}

} // namespace wic
