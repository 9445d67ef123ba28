#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The pieces of RIFF files, to be put together as text.
//
//     Riff::List("RIFF", "AVI ", Riff::List("LIST", "hdrl", ...) + Riff::Chunk("idx1", entries))
namespace Riff {

template <typename Integer>
std::string Number(Integer value) {
    std::string bytes;
    for (std::size_t i = 0; i < sizeof value; ++i) {
        bytes += static_cast<char>(static_cast<std::uint64_t>(value) >> 8 * i);
    }
    return bytes;
}

inline std::string Number16(std::uint64_t value) {
    return Number(static_cast<std::uint16_t>(value));
}

inline std::string Number32(std::uint64_t value) {
    return Number(static_cast<std::uint32_t>(value));
}

inline std::string Number64(std::uint64_t value) {
    return Number(value);
}

// A chunk that claims this size, whatever its content.
inline std::string ChunkOfSize(std::string_view code, std::uint64_t size,
                               const std::string& content) {
    return std::string(code) + Number32(size) + content;
}

// With a byte of padding where the content is odd.
inline std::string Chunk(std::string_view code, const std::string& content) {
    return ChunkOfSize(code, content.size(), content) + std::string(content.size() % 2, '\0');
}

inline std::string List(std::string_view kind, std::string_view type, const std::string& content) {
    return Chunk(kind, std::string(type) + content);
}

inline std::string List(std::string_view type, const std::string& content) {
    return List("LIST", type, content);
}

} // namespace Riff
