// Any bytes as an MP4 file, walked by all three finders. Each must come to an end, within a number
// of reads that grows with the file and no faster, and with results that are possible.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "tests/support/MemoryStreamReader.h"
#include "zanthe/analysis/MP4ParseException.h"
#include "zanthe/analysis/MP4Parser.h"
#include "zanthe/analysis/MP4ParserFindOrientation.h"
#include "zanthe/analysis/MP4ParserFindStreamTypes.h"

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

bool IsTrackType(std::int32_t type) {
    return type >= MP4TrackType::Video && type <= MP4TrackType::Other;
}

void Check(const MP4ParserFindOrientation& finder) {
    const MediaOrientation found = finder.Orientation();
    Require(found.width >= 0 && found.width <= 0xFFFF);
    Require(found.height >= 0 && found.height <= 0xFFFF);
    Require(RotationFromOrientation(found) % 90 == 0);
}

void Check(const MP4ParserFindStreamTypes& finder) {
    for (const MP4StreamType& stream : finder.StreamTypes()) {
        Require(IsTrackType(stream.type));
        Require(stream.codec.empty() || stream.codec.size() == 4);
    }
}

void Check(const DSMediaDetNS::MP4Parser& finder) {
    for (const MP4TrackInfo& track : finder.Tracks()) {
        Require(IsTrackType(track.type));
        Require(track.width >= 0 && track.width <= 0xFFFF);
        Require(track.codedWidth >= INT16_MIN && track.codedWidth <= INT16_MAX);
        Require(track.codec[4] == '\0');
    }
}

template <typename Finder>
void Walk(const std::string& bytes) {
    MemoryStreamReader::Work work;
    Finder finder(std::make_unique<MemoryStreamReader>(bytes, &work));
    try {
        finder.Parse(L"");
    } catch (const MP4ParseException&) {
        // One of the two ways in which a walk may end. What was found until then is checked too.
    }
    Check(finder);
    constexpr std::uint64_t readsOfABox = 64; // its header and the fields of the longest payload
    Require(work.reads <= readsOfABox * (bytes.size() + 1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Walk<MP4ParserFindOrientation>(bytes);
    Walk<MP4ParserFindStreamTypes>(bytes);
    Walk<DSMediaDetNS::MP4Parser>(bytes);
    return 0;
}
