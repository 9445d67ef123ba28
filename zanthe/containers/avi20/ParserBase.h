// What happens on the way through the chunks of a RIFF file; see BasicInfoParser.
#pragma once

#include <string>

#include "zanthe/containers/avi20/ChunkHeader.h"

namespace AVI20::Read {

class ParserBase {
public:
    // At each chunk, with its header read; `depth` is 0 for the file's first chunk. `skip`: its
    // content will be stepped over.
    virtual void OnChunk(int depth, const ChunkHeader& chunk, bool skip);

    // At the content of each chunk that is not skipped. The position may be moved.
    virtual void OnChunkContents(const ChunkHeader& chunk);

    virtual bool ShouldSkipChunk(const ChunkHeader& chunk) = 0;

    // Whether the position still lies before the end of this list.
    virtual bool HasMoreChildren(const ChunkHeader& chunk) = 0;

    // Behind the last child of a list; bytesRead counts from the list's content on.
    virtual void OnListEnd(const ChunkHeader& chunk, std::uint64_t bytesRead);

    // A line about the chunk, for traces: "  strh (56)", "[hdrl] (192)", "[movi] (9000) *skip*".
    virtual void FormatChunk(std::string& out, int depth, const ChunkHeader& chunk, bool skip);

protected:
    ParserBase() = default;
    ParserBase(const ParserBase&) = default;
    ParserBase& operator=(const ParserBase&) = default;
    ~ParserBase() = default;
};

} // namespace AVI20::Read
