#include "zanthe/containers/avi20/ParserBase.h"

namespace AVI20::Read {

namespace {

std::string Characters(std::uint32_t fourcc) {
    std::string text;
    for (int shift = 0; shift < 32; shift += 8) {
        text += static_cast<char>(fourcc >> shift & 0xFF);
    }
    return text;
}

} // namespace

void ParserBase::OnChunk(int, const ChunkHeader&, bool) {}

void ParserBase::OnChunkContents(const ChunkHeader&) {}

void ParserBase::OnListEnd(const ChunkHeader&, std::uint64_t) {}

void ParserBase::FormatChunk(std::string& out, int depth, const ChunkHeader& chunk, bool skip) {
    const std::string name = Characters(chunk.fourcc);
    out.assign(static_cast<std::size_t>(depth) * 2, ' ');
    out += chunk.isList ? '[' + name + ']' : name;
    out += " (" + std::to_string(chunk.size) + ')';
    if (skip) {
        out += " *skip*";
    }
}

} // namespace AVI20::Read
