#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// Boxes of MP4 files, assembled byte by byte, for what no tool writes.
namespace boxes {

inline std::string BigEndian(std::uint64_t value, int byteCount) {
    std::string bytes;
    for (int shift = (byteCount - 1) * 8; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<char>(value >> shift & 0xFF));
    }
    return bytes;
}

inline std::string U16(std::uint64_t value) {
    return BigEndian(value, 2);
}

inline std::string U32(std::uint64_t value) {
    return BigEndian(value, 4);
}

inline std::string U64(std::uint64_t value) {
    return BigEndian(value, 8);
}

inline std::string Zeros(std::size_t count) {
    return std::string(count, '\0');
}

// A header that claims whatever it is told to.
inline std::string Header(std::string_view type, std::uint64_t size) {
    return U32(size) + std::string(type);
}

inline std::string Box(std::string_view type, const std::string& payload) {
    return Header(type, 8 + payload.size()) + payload;
}

// The form with a 64-bit size.
inline std::string WideBox(std::string_view type, const std::string& payload) {
    return Header(type, 1) + U64(16 + payload.size()) + payload;
}

inline std::string FileType() {
    return Box("ftyp", "isom" + U32(512) + "isom");
}

using Elements = std::array<std::int32_t, 9>;

inline constexpr std::int32_t One = 0x10000;        // 16.16
inline constexpr std::int32_t LastOne = 0x40000000; // 2.30
inline constexpr Elements Upright{One, 0, 0, 0, One, 0, 0, 0, LastOne};
inline constexpr Elements Clockwise90{0, One, 0, -One, 0, 0, 0, 0, LastOne};
inline constexpr Elements Clockwise180{-One, 0, 0, 0, -One, 0, 0, 0, LastOne};
inline constexpr Elements Clockwise270{0, -One, 0, One, 0, 0, 0, 0, LastOne};

inline std::string Matrix(const Elements& elements) {
    std::string bytes;
    for (const std::int32_t element : elements) {
        bytes += U32(static_cast<std::uint32_t>(element));
    }
    return bytes;
}

struct TrackHeader {
    std::uint32_t version = 0;
    std::uint32_t trackId = 1;
    std::uint32_t volume = 0; // 8.8
    Elements matrix = Upright;
    std::uint32_t width = 0; // 16.16
    std::uint32_t height = 0;
};

// Times and durations take 4 bytes in version 0, and 8 in version 1.
inline std::string Times(std::uint32_t version, std::uint64_t value) {
    return BigEndian(value, version == 0 ? 4 : 8);
}

inline std::string TrackHeaderBox(const TrackHeader& track) {
    return Box("tkhd", U32(track.version << 24 | 7) + Times(track.version, 11) +
                           Times(track.version, 12) + U32(track.trackId) + Zeros(4) +
                           Times(track.version, 13) + Zeros(8) + U16(1) + U16(2) +
                           U16(track.volume) + Zeros(2) + Matrix(track.matrix) + U32(track.width) +
                           U32(track.height));
}

// `behindMatrix` is the first of the six words between the matrix and the next track_ID.
inline std::string MovieHeaderBox(std::uint32_t version, const Elements& matrix,
                                  std::uint32_t behindMatrix = 0) {
    return Box("mvhd", U32(version << 24) + Times(version, 1) + Times(version, 2) + U32(1000) +
                           Times(version, 3) + U32(0x10000) + U16(0x100) + Zeros(10) +
                           Matrix(matrix) + U32(behindMatrix) + Zeros(20) + U32(9));
}

inline std::string HandlerBox(std::string_view handler) {
    return Box("hdlr",
               Zeros(4) + "mhlr" + std::string(handler) + Zeros(12) + std::string("name\0", 5));
}

inline std::string PixelAspectBox(std::uint32_t width, std::uint32_t height) {
    return Box("pasp", U32(width) + U32(height));
}

// A sample entry for pictures.
inline std::string VisualEntry(std::string_view format, std::uint32_t width, std::uint32_t height,
                               const std::string& children = {}) {
    return Box(format,
               Zeros(6) + U16(1) + Zeros(16) + U16(width) + U16(height) + Zeros(50) + children);
}

inline std::string SampleDescriptionBox(std::uint32_t entryCount, const std::string& entries) {
    return Box("stsd", U32(0) + U32(entryCount) + entries);
}

// A track: `header` is a whole `tkhd`, `description` a whole `stsd` or nothing.
inline std::string Track(const std::string& header, std::string_view handler,
                         const std::string& description) {
    const std::string table = Box("minf", Box("stbl", description));
    return Box("trak", header + Box("mdia", HandlerBox(handler) + table));
}

// A whole file with an index only.
inline std::string Movie(const std::string& content) {
    return FileType() + Box("moov", content) + Box("free", Zeros(16));
}

} // namespace boxes
