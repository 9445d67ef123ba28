// Walks the boxes of an MP4 or QuickTime file and calls back for each. It pulls a few header fields
// out of a file without a media framework; it is no demultiplexer.
//
//     class FindDuration final : public MP4ParserBase {
//         using MP4ParserBase::MP4ParserBase;
//         void OnBoxBegin(const MP4BoxHeader& header) override;   // read the payload here
//     };
//     FindDuration finder(std::make_unique<FileReader>());
//     finder.Parse(path);
//
// A box begins with its size (32 bits, big-endian, header included) and four type characters. Size
// 1: a 64-bit size follows the type. Size 0: the box runs to the end of the file.
//
// Only headers are read, and what the callbacks ask for: an `mdat` of any size costs one seek.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "zanthe/analysis/IStreamReader.h"
#include "zanthe/analysis/MP4Matrix.h"

// One box met on the walk.
struct MP4BoxHeader {
    std::uint64_t offset = 0;     // file position of the box's first byte
    std::uint64_t headerSize = 0; // bytes from there to the payload: 8, or 16 with a 64-bit size
    std::uint64_t size = 0;       // the whole box, header included
    std::string type;             // the four type characters

    std::uint64_t End() const { return offset + size; }

    std::uint64_t PayloadOffset() const { return offset + headerSize; }
};

// Files come from anywhere, and the walk is lenient: a child may stick out of its parent, and the
// walk goes back to where the parent says that it ends. What could never end is refused instead,
// with MP4ParseException like every other failure:
//
// - a box that ends where it begins, or before,
// - more box headers read than AllowedHeaders says, which only a walk that passes over the same
//   bytes again and again comes to, or a file of next to nothing but headers,
// - more than MaxOpenBoxes boxes open at once.
//
// Subclasses are final and live on the stack of the function that uses them.
//
// Thread-safety: none; one parser serves one thread, for one call. Instances share nothing.
class MP4ParserBase {
public:
    // Each open box costs stack. In a real file six at most are descended into.
    static constexpr std::int32_t MaxOpenBoxes = 1000;

    // The most tracks that one file may have.
    static constexpr std::size_t MaxTracks = 10'000;

    // How many box headers may be read on one walk of a file of so many bytes. Its bytes make one
    // for every 8. Beyond a million it is one for every 64, which is less than a recording has that
    // keeps every picture in a fragment of its own, and never more than four million.
    static std::uint64_t AllowedHeaders(std::uint64_t fileSize);

    explicit MP4ParserBase(std::unique_ptr<IStreamReader> reader);
    MP4ParserBase(const MP4ParserBase&) = delete;
    MP4ParserBase& operator=(const MP4ParserBase&) = delete;

    // Opens the file at `path` and walks it to its end. Results are in the subclass. Throws
    // MP4ParseException when the file cannot be opened or walked to its end; what the subclass has
    // gathered until then stays.
    void Parse(const std::wstring& path);

protected:
    ~MP4ParserBase() = default;

    // Two blanks for each open box, for trace output.
    virtual std::string GetIndent();

    // Whether the walk descends into boxes of this type.
    virtual bool IsContainer(const std::string& type);

    // Before anything else is done with the box, with the position at its payload. Payloads are
    // read here; the position may be left anywhere. A box whose payload has been consumed here may
    // count as a container: its children are looked for from the position on, up to its end.
    virtual void OnBoxBegin(const MP4BoxHeader& header);

    // After the box and all in it.
    virtual void OnBoxEnd(const MP4BoxHeader& header);

    // For a box that is not descended into.
    virtual void OnLeafBox(const MP4BoxHeader& header);

    // One step of the walk: the callbacks for a box whose header has just been read, and the walk
    // of its children.
    virtual void ParseBox(const MP4BoxHeader& header);

    // Walks boxes that follow one another until the position reaches `endOffset`.
    void ParseChildren(std::uint64_t endOffset);

    // The header at the position, which then is at the payload.
    MP4BoxHeader ReadBoxHeader();

    // The box around the open box that is innermost. Empty, with a type of length zero, while fewer
    // than three boxes are open: so a box inside a top-level one has no parent.
    MP4BoxHeader ParentBox() const;

    // Exactly `count` bytes. Throws before it allocates when the file does not have them.
    std::vector<std::uint8_t> ReadBytes(std::uint64_t count);

    // The integer part of a 16.16 fixed-point number; the fraction is passed over.
    std::int32_t ReadFixedInteger();

    // A big-endian integer of type T.
    template <typename T>
    T ReadInteger();

    // Four characters.
    std::string ReadFourCharacters();

    // Whether the walk was given up for its many boxes.
    bool HasMetTooManyBoxes() const { return m_headersRead > m_headersAllowed; }

    // The version-and-flags word that a box's fields begin with; true when the version in its
    // highest byte is 0, whatever the flags.
    bool ReadIsVersion0();

    // Throws when `count` tracks have been found and another one would be too many. Each costs
    // memory with whoever asks for them, while a hostile file has one for 8 bytes.
    static void RequireRoomForTrack(std::size_t count);

    // The nine integers of a `tkhd` or `mvhd` transform, as MatrixFromFile takes them.
    MP4Matrix ReadMatrix();

    // Passes over `count` bytes.
    void Skip(std::uint64_t count);

    // The innermost open box.
    const MP4BoxHeader& CurrentBox() const { return m_boxStack.back(); }

    // Reads the payload of a `hdlr` box, the current one, and answers its handler type
    // ("vide", "soun", ...). The name at its end only has to be there, with a length that counts
    // the box's header as if it were not there. So as many bytes must exist behind the box as its
    // header has, 8, or 16 with a 64-bit size; a `hdlr` that ends the file throws.
    std::string ReadHandlerType();

    std::unique_ptr<IStreamReader> m_reader;
    std::uint64_t m_fileSize = 0;         // known once parsing has started
    std::int32_t m_depth = 0;             // boxes now open
    std::vector<MP4BoxHeader> m_boxStack; // those, outermost first

private:
    void RequireRemaining(std::uint64_t count);

    std::uint64_t m_headersAllowed = 0;
    std::uint64_t m_headersRead = 0;
};

template <typename T>
T MP4ParserBase::ReadInteger() {
    static_assert(std::is_integral_v<T>);
    using Unsigned = std::make_unsigned_t<T>;
    std::array<std::uint8_t, sizeof(T)> bytes;
    m_reader->Read(bytes.data(), bytes.size());
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = value << 8 | byte;
    }
    return static_cast<T>(static_cast<Unsigned>(value));
}
