// Any bytes as an MP4 file, walked by all three finders. Each must come to an end, within a number
// of reads that grows with the file and no faster, and with results that are possible; and a file
// on disk gives what the same bytes give in memory.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/BytesAsFile.h"
#include "platform/win32/Text.h"
#include "tests/support/MemoryStreamReader.h"
#include "zanthe/analysis/FileReader.h"
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

// Whether the walk came to its end: one of the two ways in which it may.
bool Parse(MP4ParserBase& finder, const std::wstring& path) {
    try {
        finder.Parse(path);
    } catch (const MP4ParseException&) {
        return false;
    }
    return true;
}

template <typename Finder>
void Walk(const std::string& bytes) {
    MemoryStreamReader::Work work;
    Finder finder(std::make_unique<MemoryStreamReader>(bytes, &work));
    Parse(finder, L"");
    Check(finder);                            // also what was found until a failure
    constexpr std::uint64_t readsOfABox = 64; // its header and the fields of the longest payload
    Require(work.reads <= readsOfABox * (bytes.size() + 1));
}

// The same walk over a file comes to the same, whenever the file may be opened at all.
void CompareWithFile(const std::string& bytes, const BytesAsFile& file) {
    using DSMediaDetNS::MP4Parser;
    MP4Parser inMemory(std::make_unique<MemoryStreamReader>(std::string_view(bytes)));
    MP4Parser onDisk(std::make_unique<FileReader>());
    const bool opens = bytes.size() >= 8 && bytes.compare(4, 4, "ftyp") == 0;
    const bool whole = Parse(inMemory, L"") && opens;
    Require(Parse(onDisk, win32::Utf8ToWide(file.Path())) == whole);
    Require(onDisk.Tracks() == (opens ? inMemory.Tracks() : std::vector<MP4TrackInfo>()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    Walk<MP4ParserFindOrientation>(bytes);
    Walk<MP4ParserFindStreamTypes>(bytes);
    Walk<DSMediaDetNS::MP4Parser>(bytes);
    CompareWithFile(bytes, BytesAsFile(data, size));
    return 0;
}
