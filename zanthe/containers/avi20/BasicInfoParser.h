// The walk over an AVI file that collects the headers of its streams and finds their indexes.
//
//     BasicInfoParser parser(stream);
//     parser.ParseFile();
//     for (std::size_t i = 0; i < parser.StreamCount(); ++i)
//         ... parser.GetStreamInfo(i) ...
#pragma once

#include <cstddef>
#include <vector>

#include "zanthe/containers/avi20/IStream.h"
#include "zanthe/containers/avi20/ParserBase.h"
#include "zanthe/containers/avi20/StreamInfo.h"

namespace AVI20::Read {

// The media data, nearly the whole file, are never read.
//
// Sizes in the file are taken on trust as far as they do no harm: a file that is cut short gives
// what it holds. std::exception, a plain one, is thrown for more than 50 streams in the main
// header; for more stream lists than a chunk's name can count (256); for lists nested deeper than
// 64; and for more than a million chunks or more than fit into the file, which is what a walk makes
// of lists that overlap.
class BasicInfoParser : public ParserBase {
public:
    // `stream` is borrowed for the life of this object.
    explicit BasicInfoParser(IStream* stream);
    BasicInfoParser(const BasicInfoParser&) = delete;
    BasicInfoParser& operator=(const BasicInfoParser&) = delete;

    // Walks the file's first chunk, from the start. What follows it, "RIFF" "AVIX" lists above all,
    // is reached through the indexes alone.
    void ParseFile();

    // Reads one chunk at the position and all that it holds; the position is then at the next one.
    void ParseChunk(int depth);

    // All zero where there is no such stream.
    StreamInfo GetStreamInfo(std::size_t index) const;

    std::size_t StreamCount() const { return m_streams.size(); }

    const MainAVIHeader& MainHeader() const { return m_mainHeader; }

    // Of the type word of the last "movi" list.
    std::uint64_t MoviStart() const { return m_moviStart; }

    // ParserBase. Only "movi" is skipped.
    bool ShouldSkipChunk(const ChunkHeader& chunk) override;
    bool HasMoreChildren(const ChunkHeader& chunk) override;

    // Behind the operations of ParserBase, whose order is settled.
    virtual ~BasicInfoParser() = default;

private:
    ChunkHeader ReadChunkHeader();
    void ParseContents(int depth, const ChunkHeader& chunk);
    void ParseChildren(int depth, const ChunkHeader& chunk);
    void MoveBehind(const ChunkHeader& chunk);

    void ReadHeaderChunk(const ChunkHeader& chunk);
    void ReadMainHeader();
    void AppendStream();
    void ReadStreamFormat(const ChunkHeader& chunk);
    void ReadAudioFormat();
    void TakeOldIndex(const ChunkHeader& chunk);

    IStream* m_stream;
    MainAVIHeader m_mainHeader{};
    std::vector<StreamInfo> m_streams;
    std::uint64_t m_moviStart = 0;
    std::uint64_t m_chunksVisited = 0;
};

} // namespace AVI20::Read
