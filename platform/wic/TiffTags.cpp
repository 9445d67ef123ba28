#include "platform/wic/TiffTags.h"

#include <algorithm>
#include <array>

namespace wic {

namespace {

constexpr std::uint16_t BitsPerSample = 258;
constexpr std::uint16_t Compression = 259;
constexpr std::uint16_t Photometric = 262;
constexpr std::uint16_t SamplesPerPixel = 277;
constexpr std::uint16_t RowsPerStrip = 278;
constexpr std::uint16_t PlanarConfiguration = 284;
constexpr std::uint16_t ExtraSamples = 338;

constexpr std::uint32_t PhotometricBlackIsZero = 1;
constexpr std::uint32_t PhotometricRgb = 2;
constexpr std::uint32_t PhotometricYcbcr = 6;
constexpr std::uint32_t AssociatedAlpha = 1;
constexpr std::uint32_t UnassociatedAlpha = 2;
constexpr std::uint32_t CompressionJpeg = 7;
constexpr std::uint32_t PlanesApart = 2;

constexpr std::uint64_t MaxEntries = 4096; // libtiff refuses a directory of more

// How wide things are in a directory: TIFF's, or BigTIFF's.
struct Widths {
    int entries; // bytes of the number of entries
    int entry;   // bytes of an entry
    int count;   // bytes of the number of an entry's values, and of the place of the values
};

constexpr Widths Classic = {2, 12, 4};
constexpr Widths Big = {8, 20, 8};

class Numbers {
public:
    Numbers(const InputFile& file, bool bigEndian)
        : m_file(file)
        , m_bigEndian(bigEndian) {}

    // 0 past the end of the file, which no tag's value above is.
    std::uint64_t Read(std::uint64_t offset, int byteCount) const {
        std::array<std::uint8_t, 8> bytes{};
        if (offset > static_cast<std::uint64_t>(m_file.Size())) {
            return 0;
        }
        m_file.ReadAt(static_cast<std::int64_t>(offset), bytes.data(),
                      static_cast<std::size_t>(byteCount));
        std::uint64_t number = 0;
        for (int i = 0; i < byteCount; ++i) {
            const int index = m_bigEndian ? i : byteCount - 1 - i;
            number = number << 8 | bytes[static_cast<std::size_t>(index)];
        }
        return number;
    }

    bool IsBigEndian() const { return m_bigEndian; }

private:
    const InputFile& m_file;
    bool m_bigEndian;
};

// Bytes of a value of this type; 0 for what is no whole number.
int BytesOfType(std::uint64_t type) {
    switch (type) {
    case 1:
        return 1;
    case 3:
        return 2;
    case 4:
        return 4;
    case 16:
        return 8;
    default:
        return 0;
    }
}

// Where the values of the entry at `entry` begin: in it where they have room, else elsewhere.
std::uint64_t PlaceOfValues(const Numbers& numbers, const Widths& widths, std::uint64_t entry,
                            int valueBytes) {
    const std::uint64_t field = entry + 4 + static_cast<std::uint64_t>(widths.count);
    const std::uint64_t count = numbers.Read(entry + 4, widths.count);
    const bool inside = count <= static_cast<std::uint64_t>(widths.count / valueBytes);
    return inside ? field : numbers.Read(field, widths.count);
}

TiffTags::Value* ValueOf(TiffTags& tags, std::uint64_t tag) {
    switch (tag) {
    case BitsPerSample:
        return &tags.bitsPerSample;
    case Compression:
        return &tags.compression;
    case Photometric:
        return &tags.photometric;
    case SamplesPerPixel:
        return &tags.samplesPerPixel;
    case RowsPerStrip:
        return &tags.rowsPerStrip;
    case PlanarConfiguration:
        return &tags.planarConfiguration;
    case ExtraSamples:
        return &tags.extraSamples;
    default:
        return nullptr;
    }
}

// Of two entries of one tag the first counts, as it does to libtiff.
void ReadEntry(const Numbers& numbers, const Widths& widths, std::uint64_t entry, TiffTags& tags) {
    TiffTags::Value* const value = ValueOf(tags, numbers.Read(entry, 2));
    const int valueBytes = BytesOfType(numbers.Read(entry + 2, 2));
    if (value == nullptr || value->place != 0 || valueBytes == 0) {
        return;
    }
    value->place = PlaceOfValues(numbers, widths, entry, valueBytes);
    value->bytes = valueBytes;
    value->first = numbers.Read(value->place, valueBytes);
}

} // namespace

TiffTags ReadTiffTags(const InputFile& file) {
    constexpr std::uint64_t classicVersion = 42;
    constexpr std::uint64_t bigVersion = 43;
    TiffTags tags;
    char order = 0;
    file.ReadAt(0, &order, 1);
    const Numbers numbers(file, order == 'M');
    const std::uint64_t version = numbers.Read(2, 2);
    if (version != classicVersion && version != bigVersion) {
        return tags;
    }
    tags.bigEndian = numbers.IsBigEndian();
    const Widths& widths = version == bigVersion ? Big : Classic;
    const std::uint64_t directory =
        numbers.Read(static_cast<std::uint64_t>(widths.count), widths.count);
    const std::uint64_t entries = std::min(numbers.Read(directory, widths.entries), MaxEntries);
    for (std::uint64_t i = 0; i < entries; ++i) {
        ReadEntry(numbers, widths,
                  directory + static_cast<std::uint64_t>(widths.entries) +
                      i * static_cast<std::uint64_t>(widths.entry),
                  tags);
    }
    return tags;
}

bool IsPremultiplied(const TiffTags& tags) {
    const std::uint64_t bits = tags.bitsPerSample.first;
    const std::uint64_t samples = tags.samplesPerPixel.first;
    const bool isRgba = tags.photometric.first == PhotometricRgb && samples == 4;
    const bool isGrayAlpha = tags.photometric.first == PhotometricBlackIsZero && samples == 2;
    return (bits == 8 || bits == 16) && (isRgba || isGrayAlpha) &&
           tags.extraSamples.first == AssociatedAlpha;
}

bool IsPremultipliedRgba(const TiffTags& tags) {
    return IsPremultiplied(tags) && tags.bitsPerSample.first == 8 &&
           tags.samplesPerPixel.first == 4;
}

bool IsYcbcrThatStaysSo(const TiffTags& tags) {
    return tags.photometric.first == PhotometricYcbcr && tags.compression.first != CompressionJpeg;
}

std::uint64_t RowsHeldOf(const TiffTags& tags, std::uint64_t height) {
    if (tags.planarConfiguration.first != PlanesApart) {
        return 1;
    }
    const std::uint64_t rows = tags.rowsPerStrip.first;
    return rows == 0 ? height : std::min(rows, height);
}

FilePatch WithoutAssociation(const TiffTags& tags) {
    FilePatch patch;
    patch.offset = static_cast<std::int64_t>(tags.extraSamples.place);
    patch.count = static_cast<std::size_t>(tags.extraSamples.bytes);
    patch.bytes[tags.bigEndian ? patch.count - 1 : 0] = UnassociatedAlpha;
    return patch;
}

} // namespace wic
