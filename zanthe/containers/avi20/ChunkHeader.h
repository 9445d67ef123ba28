// What the walk over a RIFF file knows of a chunk.
#pragma once

#include <cstdint>

namespace AVI20::Read {

struct ChunkHeader {
    std::uint32_t fourcc; // of "RIFF" and "LIST" chunks the type of form or list that follows
    std::uint32_t size;   // as the file says it: without the eight bytes before the content
    bool isList;          // whether it is a "RIFF" or a "LIST"
    std::uint64_t offset; // of the chunk's first byte, from the start of the file
};

// Where the content begins and where, by the chunk's own word, it ends.
constexpr std::uint64_t ContentOf(const ChunkHeader& chunk) {
    return chunk.offset + 8;
}

constexpr std::uint64_t EndOf(const ChunkHeader& chunk) {
    return ContentOf(chunk) + chunk.size;
}

} // namespace AVI20::Read
