// The full record of each track of an MP4 or QuickTime file, for media detection.
//
//     DSMediaDetNS::MP4Parser parser(std::make_unique<FileReader>());
//     parser.Parse(path);                                   // may throw MP4ParseException
//     for (const MP4TrackInfo& track : parser.Tracks()) ...
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "zanthe/analysis/MP4Matrix.h"
#include "zanthe/analysis/MP4ParserBase.h"
#include "zanthe/analysis/MP4TrackType.h"

struct MP4TrackInfo {
    std::int32_t type = MP4TrackType::Other; // a value of MP4TrackType
    std::int32_t width = 0;                  // as shown, in whole pixels; so is height
    std::int32_t height = 0;
    std::uint8_t volume = 0; // 1 at full volume, 0 at silence
    std::int32_t trackId = 0;
    MP4Matrix matrix = IdentityMatrix;
    std::int32_t codedWidth = 0; // as coded, in pixels, of "avc1" only; so is codedHeight
    std::int32_t codedHeight = 0;
    std::array<char, 8> codec{}; // four characters and a terminator; empty: none met
    std::int32_t parWidth = 1;   // shape of a pixel, width to height, of "avc1" only
    std::int32_t parHeight = 1;

    friend bool operator==(const MP4TrackInfo&, const MP4TrackInfo&) = default;
};

// Checks, from outside of the library, that the virtual operations keep their order.
struct MP4OperationOrder;

namespace DSMediaDetNS {

// Thread-safety: none; one parser serves one thread, for one call.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, and never owned by its base
class MP4Parser final : public MP4ParserBase {
public:
    using MP4ParserBase::MP4ParserBase;

    // What the walk has found, in file order; valid as long as the parser. After an
    // MP4ParseException these are the tracks up to the place that could not be parsed, the last of
    // them perhaps in part.
    const std::vector<MP4TrackInfo>& Tracks() const { return m_tracks; }

    // The movie's transform. It is the identity in any ordinary file: see mvhd.
    const MP4Matrix& MovieMatrix() const { return m_movieMatrix; }

protected:
    // MP4ParserBase
    bool IsContainer(const std::string& type) override;
    void OnBoxBegin(const MP4BoxHeader& header) override;

    // Readers of one box each.
    virtual void mvhd();
    virtual void tkhd();
    virtual void hdlr();
    virtual void stsd(const MP4BoxHeader& header);

private:
    friend struct ::MP4OperationOrder;

    MP4TrackInfo& CurrentTrack();
    void ReadSampleEntries(const MP4BoxHeader& header, std::uint32_t count);
    void ReadAvc1(MP4TrackInfo& track, std::uint64_t entryStart, std::uint32_t entrySize);

    MP4Matrix m_movieMatrix = IdentityMatrix;
    std::vector<MP4TrackInfo> m_tracks;
};

} // namespace DSMediaDetNS
