#include "tests/support/PngBytes.h"

#include <cstdint>
#include <vector>

#include <zlib.h>

namespace {

std::string Number32(std::uint64_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(value >> shift);
    }
    return bytes;
}

int ChannelsOf(int colourType) {
    switch (colourType) {
    case 2:
        return 3;
    case 4:
        return 2;
    case 6:
        return 4;
    default:
        return 1;
    }
}

std::string Compressed(const std::string& bytes) {
    uLongf size = compressBound(bytes.size());
    std::string packed(size, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &size,
             reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
    packed.resize(size);
    return packed;
}

} // namespace

std::string PngChunk(std::string_view type, const std::string& content) {
    const std::string checked = std::string(type) + content;
    const auto sum =
        crc32(0, reinterpret_cast<const Bytef*>(checked.data()), static_cast<uInt>(checked.size()));
    return Number32(content.size()) + checked + Number32(sum);
}

std::string PngBytes(const PngShape& shape, const std::string& rows, const std::string& chunks) {
    const std::size_t rowBytes =
        (static_cast<std::size_t>(shape.width) * ChannelsOf(shape.colourType) * shape.depth + 7) /
        8;
    std::string filtered;
    for (std::size_t at = 0; at < rows.size() && rowBytes > 0; at += rowBytes) {
        filtered += '\0' + rows.substr(at, rowBytes);
    }
    const std::string header = Number32(static_cast<std::uint64_t>(shape.width)) +
                               Number32(static_cast<std::uint64_t>(shape.height)) +
                               static_cast<char>(shape.depth) +
                               static_cast<char>(shape.colourType) + std::string(3, '\0');
    return "\x89PNG\r\n\x1A\n" + PngChunk("IHDR", header) + chunks +
           PngChunk("IDAT", Compressed(filtered)) + PngChunk("IEND", "");
}
