#include "zanthe/containers/avi20/BasicInfoParser.h"

#include <algorithm>
#include <exception>

namespace AVI20::Read {

namespace {

constexpr DWORD kMostStreamsTold = 50;
constexpr std::size_t kMostStreams = 256;
constexpr int kDeepest = 64;
// A media list whose size was never filled in is walked frame by frame: nine hours at 30 a second.
// A file of holes has a chunk in every eight bytes.
constexpr std::uint64_t kMostChunks = 1'000'000;

// What comes short leaves what was there.
template <typename T>
void ReadInto(IStream& stream, T& value) {
    static_cast<void>(stream.Read(&value, sizeof value));
}

} // namespace

BasicInfoParser::BasicInfoParser(IStream* stream)
    : m_stream(stream) {}

void BasicInfoParser::ParseFile() {
    m_stream->Rewind();
    ParseChunk(0);
}

void BasicInfoParser::ParseChunk(int depth) {
    // Where lists overlap, the same bytes are walked again and again, at worst twice as often with
    // each further list. A walk that visits no byte twice has at most a chunk every eight bytes.
    if (++m_chunksVisited > std::min(kMostChunks, m_stream->Size() / 8 + 1) || depth > kDeepest) {
        throw std::exception();
    }
    const ChunkHeader chunk = ReadChunkHeader();
    if (!m_stream->IsOpen()) {
        return;
    }
    const bool skip = ShouldSkipChunk(chunk);
    OnChunk(depth, chunk, skip);
    if (!skip) {
        ParseContents(depth, chunk);
    }
    MoveBehind(chunk);
}

ChunkHeader BasicInfoParser::ReadChunkHeader() {
    ChunkHeader chunk{};
    chunk.offset = m_stream->Position();
    ReadInto(*m_stream, chunk.fourcc);
    ReadInto(*m_stream, chunk.size);
    chunk.isList = chunk.fourcc == FourCc("RIFF") || chunk.fourcc == FourCc("LIST");
    if (chunk.isList) {
        ReadInto(*m_stream, chunk.fourcc);
    }
    return chunk;
}

void BasicInfoParser::ParseContents(int depth, const ChunkHeader& chunk) {
    const std::uint64_t content = m_stream->Position();
    ReadHeaderChunk(chunk);
    m_stream->Seek(content);
    OnChunkContents(chunk);
    m_stream->Seek(content);
    if (chunk.isList) {
        ParseChildren(depth, chunk);
    }
}

void BasicInfoParser::ParseChildren(int depth, const ChunkHeader& chunk) {
    // Behind the end of the file there is nothing to read, however long a list claims to be.
    while (HasMoreChildren(chunk) && m_stream->Position() < m_stream->Size()) {
        const std::uint64_t before = m_stream->Position();
        ParseChunk(depth + 1);
        if (m_stream->Position() <= before) {
            break; // the stream does not move any more
        }
    }
    OnListEnd(chunk, m_stream->Position() - ContentOf(chunk));
}

void BasicInfoParser::MoveBehind(const ChunkHeader& chunk) {
    if (chunk.size == 0) {
        m_stream->Seek(m_stream->Position() + (m_stream->Position() & 1));
    } else {
        m_stream->Seek(EndOf(chunk) + (chunk.size & 1));
    }
}

void BasicInfoParser::ReadHeaderChunk(const ChunkHeader& chunk) {
    if (chunk.fourcc == FourCc("avih")) {
        ReadMainHeader();
    } else if (chunk.fourcc == FourCc("strl")) {
        AppendStream();
    } else if (chunk.fourcc == FourCc("idx1")) {
        TakeOldIndex(chunk);
    } else if (m_streams.empty()) {
        return;
    } else if (chunk.fourcc == FourCc("strh") && chunk.size == sizeof(AVIStreamHeader)) {
        ReadInto(*m_stream, m_streams.back().header);
    } else if (chunk.fourcc == FourCc("strf")) {
        ReadStreamFormat(chunk);
    } else if (chunk.fourcc == FourCc("indx")) {
        m_streams.back().indexChunk = chunk;
        m_streams.back().isOldIndex = false;
    }
}

void BasicInfoParser::ReadMainHeader() {
    ReadInto(*m_stream, m_mainHeader);
    if (m_mainHeader.dwStreams > kMostStreamsTold) {
        throw std::exception();
    }
}

void BasicInfoParser::AppendStream() {
    if (m_streams.size() == kMostStreams) {
        throw std::exception();
    }
    m_streams.emplace_back();
}

void BasicInfoParser::ReadStreamFormat(const ChunkHeader& chunk) {
    StreamInfo& stream = m_streams.back();
    if (stream.header.fccType == FourCc("vids") && chunk.size == sizeof(BITMAPINFOHEADER)) {
        ReadInto(*m_stream, stream.videoFormat);
    } else if (stream.header.fccType == FourCc("auds") && chunk.size >= sizeof(WAVEFORMATEX)) {
        ReadAudioFormat();
    }
}

void BasicInfoParser::ReadAudioFormat() {
    StreamInfo& stream = m_streams.back();
    ReadInto(*m_stream, stream.audioFormat);
    // At most 64 KiB, whatever the chunk's size.
    stream.audioExtra.assign(stream.audioFormat.cbSize, 0);
    if (!stream.audioExtra.empty()) {
        static_cast<void>(m_stream->Read(stream.audioExtra.data(), stream.audioFormat.cbSize));
    }
}

// A stream with an index of its own keeps that one, which reaches further.
void BasicInfoParser::TakeOldIndex(const ChunkHeader& chunk) {
    for (StreamInfo& stream : m_streams) {
        if (stream.indexChunk.size == 0) {
            stream.indexChunk = chunk;
            stream.isOldIndex = true;
        }
    }
}

StreamInfo BasicInfoParser::GetStreamInfo(std::size_t index) const {
    return index < m_streams.size() ? m_streams[index] : StreamInfo{};
}

bool BasicInfoParser::ShouldSkipChunk(const ChunkHeader& chunk) {
    if (chunk.fourcc != FourCc("movi")) {
        return false;
    }
    m_moviStart = ContentOf(chunk);
    return true;
}

bool BasicInfoParser::HasMoreChildren(const ChunkHeader& chunk) {
    return m_stream->Position() < EndOf(chunk);
}

} // namespace AVI20::Read
