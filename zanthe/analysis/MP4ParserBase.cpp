#include "zanthe/analysis/MP4ParserBase.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "zanthe/analysis/MP4ParseException.h"

namespace {

// As they stand in the file, whose first byte is the number's highest.
std::string FourCharacters(std::uint32_t number) {
    std::string characters(4, '\0');
    for (int i = 0; i < 4; ++i) {
        characters[static_cast<std::size_t>(i)] = static_cast<char>(number >> (24 - 8 * i));
    }
    return characters;
}

} // namespace

MP4ParserBase::MP4ParserBase(std::unique_ptr<IStreamReader> reader)
    : m_reader(std::move(reader)) {}

void MP4ParserBase::Parse(const std::wstring& path) {
    m_depth = 0;
    m_boxStack.clear();
    m_headersRead = 0;
    m_reader->Open(path);
    m_fileSize = m_reader->GetSize();
    m_headersAllowed = AllowedHeaders(m_fileSize);
    ParseChildren(m_fileSize);
}

std::string MP4ParserBase::GetIndent() {
    return std::string(static_cast<std::size_t>(m_depth) * 2, ' ');
}

bool MP4ParserBase::IsContainer(const std::string& type) {
    constexpr std::string_view containers[] = {"moov", "trak", "mdia", "minf", "stbl", "BSCM"};
    return std::find(std::begin(containers), std::end(containers), type) != std::end(containers);
}

void MP4ParserBase::OnBoxBegin(const MP4BoxHeader&) {}

void MP4ParserBase::OnBoxEnd(const MP4BoxHeader&) {}

void MP4ParserBase::OnLeafBox(const MP4BoxHeader&) {}

void MP4ParserBase::ParseBox(const MP4BoxHeader& header) {
    if (m_depth >= MaxOpenBoxes) {
        throw MP4ParseException();
    }
    ++m_depth;
    m_boxStack.push_back(header);
    OnBoxBegin(header);
    if (IsContainer(header.type)) {
        ParseChildren(header.End());
    } else {
        OnLeafBox(header);
    }
    OnBoxEnd(header);
    m_boxStack.pop_back();
    --m_depth;
}

void MP4ParserBase::ParseChildren(std::uint64_t endOffset) {
    while (m_reader->GetPosition() < endOffset) {
        const MP4BoxHeader header = ReadBoxHeader();
        ParseBox(header);
        // Wherever the callbacks have left the position: they may stop reading anywhere.
        m_reader->Seek(header.End());
    }
}

MP4BoxHeader MP4ParserBase::ReadBoxHeader() {
    if (++m_headersRead > m_headersAllowed) {
        throw MP4ParseException();
    }
    MP4BoxHeader header;
    header.offset = m_reader->GetPosition();
    header.headerSize = 8;
    const auto sizeAndType = ReadInteger<std::uint64_t>();
    header.size = sizeAndType >> 32;
    header.type = FourCharacters(static_cast<std::uint32_t>(sizeAndType));
    if (header.size == 1) {
        header.size = ReadInteger<std::uint64_t>();
        header.headerSize = 16;
    } else if (header.size == 0) {
        header.size = m_fileSize - header.offset;
    }
    if (header.End() <= header.offset) {
        throw MP4ParseException();
    }
    return header;
}

std::uint64_t MP4ParserBase::AllowedHeaders(std::uint64_t fileSize) {
    constexpr std::uint64_t always = 1000; // a small file may well go over some bytes twice
    constexpr std::uint64_t many = 1'000'000;
    constexpr std::uint64_t most = 4'000'000;
    return std::max(std::clamp(fileSize / 8, always, many), std::min(fileSize / 64, most));
}

MP4BoxHeader MP4ParserBase::ParentBox() const {
    return m_boxStack.size() < 3 ? MP4BoxHeader{} : m_boxStack[m_boxStack.size() - 2];
}

std::vector<std::uint8_t> MP4ParserBase::ReadBytes(std::uint64_t count) {
    RequireRemaining(count);
    std::vector<std::uint8_t> bytes(count);
    m_reader->Read(bytes.data(), count);
    return bytes;
}

std::int32_t MP4ParserBase::ReadFixedInteger() {
    return static_cast<std::int32_t>(ReadInteger<std::uint32_t>() >> 16);
}

std::string MP4ParserBase::ReadFourCharacters() {
    return FourCharacters(ReadInteger<std::uint32_t>());
}

bool MP4ParserBase::ReadIsVersion0() {
    return ReadInteger<std::uint32_t>() >> 24 == 0;
}

void MP4ParserBase::RequireRoomForTrack(std::size_t count) {
    if (count >= MaxTracks) {
        throw MP4ParseException();
    }
}

MP4Matrix MP4ParserBase::ReadMatrix() {
    std::array<std::int32_t, 9> elements;
    for (std::int32_t& element : elements) {
        element = ReadInteger<std::int32_t>();
    }
    return MatrixFromFile(elements);
}

void MP4ParserBase::Skip(std::uint64_t count) {
    m_reader->Seek(m_reader->GetPosition() + count);
}

std::string MP4ParserBase::ReadHandlerType() {
    constexpr std::uint64_t fixedFields = 24;
    ReadInteger<std::uint32_t>(); // version and flags
    ReadFourCharacters();         // component type
    std::string type = ReadFourCharacters();
    for (int reserved = 0; reserved < 3; ++reserved) {
        ReadInteger<std::uint32_t>();
    }
    // Nobody uses the name, and it may claim any length: it has to be there, not in memory. In a
    // box shorter than its fields the difference wraps round, to more than any file has.
    RequireRemaining(CurrentBox().size - fixedFields);
    return type;
}

void MP4ParserBase::RequireRemaining(std::uint64_t count) {
    const std::uint64_t position = m_reader->GetPosition();
    if (position > m_fileSize || count > m_fileSize - position) {
        throw MP4ParseException();
    }
}
