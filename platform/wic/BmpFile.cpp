#include "platform/wic/BmpFile.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <utility>
#include <vector>

#include "platform/wic/VipsRendering.h"

namespace wic {

namespace {

constexpr std::uint32_t FileHeaderBytes = 14;
constexpr std::uint32_t CoreHeaderBytes = 12;
constexpr std::uint32_t InfoHeaderBytes = 40;
constexpr std::uint32_t LargestHeaderBytes = 124;
constexpr std::uint32_t HeaderBytesWithAlphaMask = 56;

enum Compression : std::uint32_t { Rgb = 0, Rle8 = 1, Rle4 = 2, BitFields = 3, AlphaBitFields = 6 };

constexpr int Sides = 1 << 16; // neither side is longer: no such picture is under the limit

// The bytes that all headers and the masks behind them fill.
struct HeaderBytes {
    std::array<std::uint8_t, FileHeaderBytes + LargestHeaderBytes> bytes{};
    std::size_t count = 0;

    std::uint32_t Word(std::size_t at) const {
        return static_cast<std::uint32_t>(bytes[at] | bytes[at + 1] << 8);
    }

    std::uint32_t Double(std::size_t at) const { return Word(at) | Word(at + 2) << 16; }
};

double DpiOf(std::uint32_t pixelsPerMetre) {
    constexpr double metresPerInch = 0.0254;
    return pixelsPerMetre > 0 ? pixelsPerMetre * metresPerInch : 96.0;
}

bool IsKnownDepth(int bits, Compression compression) {
    switch (compression) {
    case Rgb:
        return bits == 1 || bits == 2 || bits == 4 || bits == 8 || bits == 16 || bits == 24 ||
               bits == 32;
    case Rle8:
        return bits == 8;
    case Rle4:
        return bits == 4;
    case BitFields:
    case AlphaBitFields:
        return bits == 16 || bits == 32;
    }
    return false;
}

// A mask's bits must be neighbours.
bool IsUsableMask(std::uint32_t mask) {
    if (mask == 0) {
        return true;
    }
    const std::uint32_t ones = mask >> std::countr_zero(mask);
    return (ones & (ones + 1)) == 0;
}

// The mask's part of the pixel as a share of 255, to the nearest.
std::uint8_t Channel(std::uint32_t pixel, std::uint32_t mask, std::uint8_t absent) {
    if (mask == 0) {
        return absent;
    }
    const int shift = std::countr_zero(mask);
    const std::uint64_t most = mask >> shift;
    const std::uint64_t value = (pixel & mask) >> shift;
    return static_cast<std::uint8_t>((value * 255 * 2 + most) / (most * 2));
}

class HeaderReader {
public:
    explicit HeaderReader(const InputFile& file)
        : m_file(file) {}

    HRESULT Read(BmpHeader& header) {
        m_head.count = m_file.ReadAt(0, m_head.bytes.data(), m_head.bytes.size());
        if (m_head.count < FileHeaderBytes + CoreHeaderBytes || m_head.bytes[0] != 'B' ||
            m_head.bytes[1] != 'M') {
            return WINCODEC_ERR_COMPONENTNOTFOUND;
        }
        m_size = m_head.Double(FileHeaderBytes);
        const bool isInfo = m_size >= InfoHeaderBytes && m_size <= LargestHeaderBytes &&
                            m_head.count >= FileHeaderBytes + m_size;
        if (m_size != CoreHeaderBytes && !isInfo) {
            return WINCODEC_ERR_BADIMAGE;
        }
        header.pixelOffset = m_head.Double(10);
        const bool known = isInfo ? ReadInfo(header) : ReadCore(header);
        if (!known || header.width < 1 || header.height < 1) {
            return WINCODEC_ERR_BADIMAGE;
        }
        if (header.width > Sides || header.height > Sides ||
            static_cast<std::uint64_t>(header.width) * static_cast<std::uint64_t>(header.height) >
                MaxProgressivePixels) {
            return WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
        }
        ReadPalette(header);
        return S_OK;
    }

private:
    bool ReadCore(BmpHeader& header) const {
        header.width = static_cast<int>(m_head.Word(FileHeaderBytes + 4));
        header.height = static_cast<int>(m_head.Word(FileHeaderBytes + 6));
        header.bits = static_cast<int>(m_head.Word(FileHeaderBytes + 10));
        return IsKnownDepth(header.bits, Rgb) && header.bits != 16 && header.bits != 32;
    }

    bool ReadInfo(BmpHeader& header) {
        const auto height = static_cast<std::int32_t>(m_head.Double(FileHeaderBytes + 8));
        header.width = static_cast<std::int32_t>(m_head.Double(FileHeaderBytes + 4));
        header.topDown = height < 0;
        header.height = height == INT32_MIN ? 0 : std::abs(height);
        header.bits = static_cast<int>(m_head.Word(FileHeaderBytes + 14));
        header.dpiX = DpiOf(m_head.Double(FileHeaderBytes + 24));
        header.dpiY = DpiOf(m_head.Double(FileHeaderBytes + 28));
        m_colours = m_head.Double(FileHeaderBytes + 32);
        const auto compression = static_cast<Compression>(m_head.Double(FileHeaderBytes + 16));
        if (!IsKnownDepth(header.bits, compression)) {
            return false;
        }
        header.coding = compression == Rle8   ? BmpHeader::Coding::Rle8
                        : compression == Rle4 ? BmpHeader::Coding::Rle4
                                              : BmpHeader::Coding::Plain;
        return ReadMasks(header, compression);
    }

    // The three masks stand in the header, or behind one of 40 bytes; the alpha mask in headers
    // that are long enough for it.
    bool ReadMasks(BmpHeader& header, Compression compression) {
        if (header.bits == 16) {
            header.masks = {0x7C00, 0x03E0, 0x001F, 0};
        }
        if (compression != BitFields && compression != AlphaBitFields) {
            return true;
        }
        const bool hasAlpha = compression == AlphaBitFields || m_size >= HeaderBytesWithAlphaMask;
        const std::size_t masks = hasAlpha ? 4 : 3;
        if (m_head.count < FileHeaderBytes + InfoHeaderBytes + masks * 4) {
            return false;
        }
        for (std::size_t i = 0; i < masks; ++i) {
            header.masks[i] = m_head.Double(FileHeaderBytes + InfoHeaderBytes + i * 4);
        }
        m_masksBehind = m_size == InfoHeaderBytes ? static_cast<std::uint32_t>(masks * 4) : 0;
        return std::all_of(header.masks.begin(), header.masks.end(), IsUsableMask);
    }

    void ReadPalette(BmpHeader& header) const {
        header.palette.fill(0xFF000000);
        if (header.bits > 8) {
            return;
        }
        const std::size_t entryBytes = m_size == CoreHeaderBytes ? 3 : 4;
        const std::size_t most = std::size_t{1} << header.bits;
        const std::size_t wanted = m_colours == 0 ? most : std::min<std::size_t>(m_colours, most);
        std::array<std::uint8_t, 1024> bytes{}; // 256 entries of four
        const std::int64_t start = std::int64_t{FileHeaderBytes} + m_size + m_masksBehind;
        const std::int64_t room = std::max<std::int64_t>(0, header.pixelOffset - start);
        const std::size_t count = std::min(wanted, static_cast<std::size_t>(room) / entryBytes);
        m_file.ReadAt(start, bytes.data(), count * entryBytes);
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint8_t* entry = bytes.data() + i * entryBytes;
            header.palette[i] = 0xFF000000U | static_cast<WICColor>(entry[2]) << 16 |
                                static_cast<WICColor>(entry[1]) << 8 | entry[0];
        }
    }

    const InputFile& m_file;
    HeaderBytes m_head;
    std::uint32_t m_size = 0;        // of the header behind the file's
    std::uint32_t m_colours = 0;     // in the palette; 0: all that there can be
    std::uint32_t m_masksBehind = 0; // bytes
};

void PutColour(std::uint8_t* to, WICColor colour) {
    to[0] = static_cast<std::uint8_t>(colour);
    to[1] = static_cast<std::uint8_t>(colour >> 8);
    to[2] = static_cast<std::uint8_t>(colour >> 16);
    to[3] = static_cast<std::uint8_t>(colour >> 24);
}

void ExpandIndexed(const BmpHeader& header, const std::uint8_t* row, std::uint8_t* to) {
    const int perByte = 8 / header.bits;
    const int mask = (1 << header.bits) - 1;
    for (int x = 0; x < header.width; ++x, to += 4) {
        const int shift = (perByte - 1 - x % perByte) * header.bits;
        PutColour(to, header.palette[static_cast<std::size_t>(row[x / perByte] >> shift & mask)]);
    }
}

void ExpandTrueColour(const BmpHeader& header, const std::uint8_t* row, std::uint8_t* to) {
    const int bytes = header.bits / 8;
    for (int x = 0; x < header.width; ++x, row += bytes, to += 4) {
        std::uint32_t pixel = 0;
        for (int i = bytes - 1; i >= 0; --i) {
            pixel = pixel << 8 | row[i];
        }
        to[0] = Channel(pixel, header.masks[2], 0);
        to[1] = Channel(pixel, header.masks[1], 0);
        to[2] = Channel(pixel, header.masks[0], 0);
        to[3] = Channel(pixel, header.masks[3], 255);
    }
}

// What the most common files need and no more; they may be large.
void ExpandBytes(const BmpHeader& header, const std::uint8_t* row, std::uint8_t* to) {
    const int bytes = header.bits / 8;
    for (int x = 0; x < header.width; ++x, row += bytes, to += 4) {
        to[0] = row[0];
        to[1] = row[1];
        to[2] = row[2];
        to[3] = 255;
    }
}

void Expand(const BmpHeader& header, const std::uint8_t* row, std::uint8_t* to) {
    if (header.bits <= 8) {
        ExpandIndexed(header, row, to);
    } else if (header.bits >= 24 && header.masks == BmpHeader::BytesAsMasks) {
        ExpandBytes(header, row, to);
    } else {
        ExpandTrueColour(header, row, to);
    }
}

// Runs of pixels of one colour, or in pairs, in the order of the file's rows. Indices of the whole
// picture are kept: a run may step to any place behind it.
class RunDecoder {
public:
    RunDecoder(const std::shared_ptr<const InputFile>& file, const BmpHeader& header)
        : m_reader(file)
        , m_header(header)
        , m_indices(static_cast<std::size_t>(header.width) *
                    static_cast<std::size_t>(header.height)) {
        m_reader.MoveTo(header.pixelOffset);
    }

    // Indices, rows in the order of the file.
    const std::vector<std::uint8_t>& Decode() {
        std::uint8_t count = 0;
        std::uint8_t value = 0;
        while (m_y < m_header.height && m_reader.ReadByte(count) && m_reader.ReadByte(value)) {
            if (count > 0) {
                PutRun(count, value);
            } else if (!Escape(value)) {
                break;
            }
        }
        return m_indices;
    }

private:
    bool IsFour() const { return m_header.coding == BmpHeader::Coding::Rle4; }

    void Put(int index) {
        if (m_x < m_header.width && m_y < m_header.height) {
            m_indices[static_cast<std::size_t>(m_y) * static_cast<std::size_t>(m_header.width) +
                      static_cast<std::size_t>(m_x)] = static_cast<std::uint8_t>(index);
        }
        ++m_x;
    }

    void PutRun(int count, int value) {
        for (int i = 0; i < count; ++i) {
            Put(IsFour() ? (i % 2 == 0 ? value >> 4 : value & 15) : value);
        }
    }

    // False at the end of the picture or of the file.
    bool Escape(int code) {
        switch (code) {
        case 0:
            m_x = 0;
            ++m_y;
            return true;
        case 1:
            return false;
        case 2:
            return Step();
        default:
            return PutPixels(code);
        }
    }

    bool Step() {
        std::uint8_t right = 0;
        std::uint8_t on = 0;
        if (!m_reader.ReadByte(right) || !m_reader.ReadByte(on)) {
            return false;
        }
        m_x = std::min(m_x + right, m_header.width);
        m_y += on;
        return true;
    }

    bool PutPixels(int count) {
        const int bytes = IsFour() ? (count + 1) / 2 : count;
        std::array<std::uint8_t, 256> pixels{};
        const std::size_t padded = (static_cast<std::size_t>(bytes) + 1) / 2 * 2;
        if (m_reader.Read(pixels.data(), padded) < static_cast<std::size_t>(bytes)) {
            return false;
        }
        for (int i = 0; i < count; ++i) {
            const int byte = pixels[static_cast<std::size_t>(IsFour() ? i / 2 : i)];
            Put(IsFour() ? (i % 2 == 0 ? byte >> 4 : byte & 15) : byte);
        }
        return true;
    }

    BufferedReader m_reader;
    const BmpHeader& m_header;
    std::vector<std::uint8_t> m_indices;
    int m_x = 0;
    int m_y = 0;
};

} // namespace

std::shared_ptr<BmpFile> BmpFile::Open(std::shared_ptr<const InputFile> file, HRESULT& result) {
    BmpHeader header;
    result = HeaderReader(*file).Read(header);
    if (FAILED(result)) {
        return nullptr;
    }
    return std::shared_ptr<BmpFile>(new BmpFile(std::move(file), header));
}

BmpFile::BmpFile(std::shared_ptr<const InputFile> file, const BmpHeader& header)
    : m_file(std::move(file))
    , m_header(header) {}

bool BmpFile::HasAlphaMask() const {
    return m_header.bits > 8 && m_header.masks[3] != 0;
}

PictureShape BmpFile::Shape() const {
    PictureShape shape;
    shape.width = static_cast<UINT>(m_header.width);
    shape.height = static_cast<UINT>(m_header.height);
    shape.dpiX = m_header.dpiX;
    shape.dpiY = m_header.dpiY;
    switch (m_header.bits) {
    case 1:
        shape.format = GUID_WICPixelFormat1bppIndexed;
        break;
    case 2:
        shape.format = GUID_WICPixelFormat2bppIndexed;
        break;
    case 4:
        shape.format = GUID_WICPixelFormat4bppIndexed;
        break;
    case 8:
        shape.format = GUID_WICPixelFormat8bppIndexed;
        break;
    case 16:
        shape.format = GUID_WICPixelFormat16bppBGR555;
        break;
    case 24:
        shape.format = GUID_WICPixelFormat24bppBGR;
        break;
    default:
        shape.format = HasAlphaMask() ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat32bppBGR;
        break;
    }
    return shape;
}

HRESULT BmpFile::Render(const Rendering& rendering) const {
    const PictureShape shape = Shape();
    if (rendering.width != shape.width || rendering.height != shape.height) {
        return RenderScaled(rendering);
    }
    RowWriter writer({PixelLayout::Bgra, false}, rendering);
    return m_header.coding == BmpHeader::Coding::Plain ? DecodePlain(writer) : DecodeRuns(writer);
}

HRESULT BmpFile::DecodePlain(RowWriter& writer) const {
    const auto width = static_cast<std::size_t>(m_header.width);
    const std::size_t rowBytes = (width * static_cast<std::size_t>(m_header.bits) + 31) / 32 * 4;
    std::vector<std::uint8_t> row(rowBytes);
    std::vector<std::uint8_t> pixels(width * 4);
    BufferedReader reader(m_file);
    reader.MoveTo(m_header.pixelOffset);
    for (int i = 0; i < m_header.height; ++i) {
        // The last row may come without the bytes that fill it up.
        const std::size_t needed = (width * static_cast<std::size_t>(m_header.bits) + 7) / 8;
        if (reader.Read(row.data(), rowBytes) < needed) {
            return WINCODEC_ERR_BADIMAGE;
        }
        Expand(m_header, row.data(), pixels.data());
        const int y = m_header.topDown ? i : m_header.height - 1 - i;
        writer.Write(static_cast<std::size_t>(y), 1, pixels.data(), pixels.size());
    }
    return S_OK;
}

HRESULT BmpFile::DecodeRuns(RowWriter& writer) const {
    RunDecoder decoder(m_file, m_header);
    const std::vector<std::uint8_t>& indices = decoder.Decode();
    const auto width = static_cast<std::size_t>(m_header.width);
    std::vector<std::uint8_t> pixels(width * 4);
    for (int i = 0; i < m_header.height; ++i) {
        const std::uint8_t* row = indices.data() + static_cast<std::size_t>(i) * width;
        for (std::size_t x = 0; x < width; ++x) {
            PutColour(pixels.data() + x * 4, m_header.palette[row[x]]);
        }
        const int y = m_header.topDown ? i : m_header.height - 1 - i;
        writer.Write(static_cast<std::size_t>(y), 1, pixels.data(), pixels.size());
    }
    return S_OK;
}

HRESULT BmpFile::RenderScaled(const Rendering& rendering) const {
    const PictureShape shape = Shape();
    const std::size_t stride = std::size_t{shape.width} * 4;
    const auto whole = std::make_unique_for_overwrite<BYTE[]>(stride * shape.height);
    const HRESULT decoded = Render(
        {shape.width, shape.height, GUID_WICPixelFormat32bppBGRA, Turn(), stride, whole.get()});
    if (FAILED(decoded)) {
        return decoded;
    }
    return RenderMemory(whole.get(), shape, {PixelLayout::Bgra, false}, rendering);
}

} // namespace wic
