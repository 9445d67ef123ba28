#include "platform/wic/TiffTags.h"

#include <algorithm>
#include <array>

namespace wic {

namespace {

constexpr std::uint16_t BitsPerSample = 258;
constexpr std::uint16_t Compression = 259;
constexpr std::uint16_t Photometric = 262;
constexpr std::uint16_t SamplesPerPixel = 277;
constexpr std::uint16_t ExtraSamples = 338;

constexpr std::uint16_t Short = 3;
constexpr std::uint16_t PhotometricRgb = 2;
constexpr std::uint16_t PhotometricYcbcr = 6;
constexpr std::uint16_t AssociatedAlpha = 1;
constexpr std::uint16_t CompressionJpeg = 7;

constexpr int MaxEntries = 512; // far more than there are tags

class Numbers {
public:
    Numbers(const InputFile& file, bool bigEndian)
        : m_file(file)
        , m_bigEndian(bigEndian) {}

    // 0 past the end of the file, which no tag's value above is.
    std::uint32_t Read(std::int64_t offset, int byteCount) const {
        std::array<std::uint8_t, 4> bytes{};
        m_file.ReadAt(offset, bytes.data(), static_cast<std::size_t>(byteCount));
        std::uint32_t number = 0;
        for (int i = 0; i < byteCount; ++i) {
            const int index = m_bigEndian ? i : byteCount - 1 - i;
            number = number << 8 | bytes[static_cast<std::size_t>(index)];
        }
        return number;
    }

private:
    const InputFile& m_file;
    bool m_bigEndian;
};

// The first value of the entry at `entry`; two of 16 bits lie in it, more lie elsewhere.
std::uint32_t FirstShort(const Numbers& numbers, std::int64_t entry) {
    if (numbers.Read(entry + 2, 2) != Short) {
        return 0;
    }
    const bool inside = numbers.Read(entry + 4, 4) <= 2;
    return numbers.Read(inside ? entry + 8 : std::int64_t{numbers.Read(entry + 8, 4)}, 2);
}

} // namespace

TiffTags ReadTiffTags(const InputFile& file) {
    TiffTags tags;
    char order = 0;
    file.ReadAt(0, &order, 1);
    const Numbers numbers(file, order == 'M');
    if (numbers.Read(2, 2) != 42) {
        return tags;
    }
    const std::int64_t directory = numbers.Read(4, 4);
    const int entries = std::min(static_cast<int>(numbers.Read(directory, 2)), MaxEntries);
    for (int i = 0; i < entries; ++i) {
        constexpr int entryBytes = 12;
        const std::int64_t entry = directory + 2 + std::int64_t{i} * entryBytes;
        switch (numbers.Read(entry, 2)) {
        case BitsPerSample:
            tags.bitsPerSample = FirstShort(numbers, entry);
            break;
        case Compression:
            tags.compression = FirstShort(numbers, entry);
            break;
        case Photometric:
            tags.photometric = FirstShort(numbers, entry);
            break;
        case SamplesPerPixel:
            tags.samplesPerPixel = FirstShort(numbers, entry);
            break;
        case ExtraSamples:
            tags.extraSamples = FirstShort(numbers, entry);
            break;
        default:
            break;
        }
    }
    return tags;
}

bool IsPremultipliedRgba(const TiffTags& tags) {
    return tags.bitsPerSample == 8 && tags.photometric == PhotometricRgb &&
           tags.samplesPerPixel == 4 && tags.extraSamples == AssociatedAlpha;
}

bool IsYcbcrThatStaysSo(const TiffTags& tags) {
    return tags.photometric == PhotometricYcbcr && tags.compression != CompressionJpeg;
}

} // namespace wic
