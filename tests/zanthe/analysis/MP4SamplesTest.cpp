// The finders over whole files: what is special about each, cut short anywhere, and damaged.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/MemoryStreamReader.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/analysis/Mp4Samples.h"
#include "zanthe/analysis/FileReader.h"
#include "zanthe/analysis/MP4ParseException.h"
#include "zanthe/analysis/MP4Parser.h"
#include "zanthe/analysis/MP4ParserFindOrientation.h"
#include "zanthe/analysis/MP4ParserFindStreamTypes.h"
#include "zanthe/analysis/MP4StreamTypes.h"
#include "zanthe/analysis/MediaOrientation.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::wstring Wide(const std::string& path) {
    return win32::Utf8ToWide(path);
}

// The tracks of a file; nothing when it does not parse.
std::optional<std::vector<MP4TrackInfo>> TracksOf(const std::wstring& path) {
    DSMediaDetNS::MP4Parser parser(std::make_unique<FileReader>());
    try {
        parser.Parse(path);
    } catch (const MP4ParseException&) {
        return std::nullopt;
    }
    return parser.Tracks();
}

std::vector<MP4StreamType> StreamsOf(const std::string& name) {
    return ReadMP4StreamTypes(Wide(MadeMedia(name)));
}

MP4TrackInfo FirstTrackOf(const std::string& name) {
    return TracksOf(Wide(MadeMedia(name))).value().at(0);
}

MediaOrientation OrientationOf(const std::string& name) {
    return ReadMediaOrientation(Wide(MadeMedia(name)));
}

TEST(MP4Samples, Rotations) {
    for (const int degrees : {90, 180, 270}) {
        const MediaOrientation orientation =
            OrientationOf("mp4-rotate" + std::to_string(degrees) + ".mp4");
        EXPECT_EQ(RotationFromOrientation(orientation), degrees);
        EXPECT_EQ(orientation.width, 64);
        EXPECT_EQ(orientation.height, 48);
    }
    EXPECT_EQ(FirstTrackOf("mp4-rotate90.mp4").matrix, (MP4Matrix{0, -1, 1, 0}));
}

TEST(MP4Samples, PixelAspectStretchesTheShownSize) {
    const MP4TrackInfo track = FirstTrackOf("mp4-pasp-4-3.mp4");
    EXPECT_EQ(track.parWidth, 4);
    EXPECT_EQ(track.parHeight, 3);
    EXPECT_EQ(track.codedWidth, 64);
    EXPECT_EQ(track.width, 85);                                   // 64 * 4 / 3
    EXPECT_EQ(FirstTrackOf("mp4-hevc-pasp-2-1.mp4").parWidth, 1); // not looked for in HEVC
}

TEST(MP4Samples, AudioFirst) {
    EXPECT_THAT(StreamsOf("mp4-audio-first.mp4"),
                ElementsAre(MP4StreamType{1, "mp4a"}, MP4StreamType{0, "avc1"}));
    EXPECT_EQ(OrientationOf("mp4-audio-first.mp4").width, 64);
}

TEST(MP4Samples, TextTracks) {
    EXPECT_THAT(StreamsOf("mp4-text-track.mp4"),
                ElementsAre(MP4StreamType{0, "avc1"}, MP4StreamType{2, "tx3g"}));
    EXPECT_THAT(StreamsOf("mp4-text-track.mov"),
                ElementsAre(MP4StreamType{0, "avc1"}, MP4StreamType{2, "text"}));
    const auto tracks = TracksOf(Wide(MadeMedia("mp4-text-first.mov"))).value();
    ASSERT_EQ(tracks.size(), 2u);
    EXPECT_EQ(tracks[0].type, 2);
    EXPECT_STREQ(tracks[0].codec.data(), "");
    EXPECT_STREQ(tracks[1].codec.data(), "avc1");
}

TEST(MP4Samples, WhereTheIndexStandsMakesNoDifference) {
    const auto plain = TracksOf(Wide(MadeMedia("mp4-plain.mp4")));
    ASSERT_TRUE(plain.has_value());
    EXPECT_EQ(plain->size(), 2u);
    EXPECT_EQ(TracksOf(Wide(MadeMedia("mp4-moov-first.mp4"))), plain);
    EXPECT_EQ(TracksOf(Wide(MadeMedia("mp4-mdat-64bit.mp4"))), plain);
    EXPECT_EQ(TracksOf(Wide(MadeMedia("mp4-fragmented.mp4"))), plain);
}

TEST(MP4Samples, Version1Headers) {
    const MediaOrientation orientation = OrientationOf("mp4-version1-headers.mp4");
    EXPECT_EQ(orientation.width, 64);
    EXPECT_EQ(orientation.matrix, IdentityMatrix);
    EXPECT_EQ(FirstTrackOf("mp4-version1-headers.mp4").trackId, 1);
}

TEST(MP4Samples, WithoutAFileTypeNothingIsFound) {
    EXPECT_THAT(StreamsOf("mp4-no-ftyp.mov"), IsEmpty());
    EXPECT_EQ(OrientationOf("mp4-no-ftyp.mov"), MediaOrientation());
}

TEST(MP4Samples, PngInMov) {
    EXPECT_THAT(StreamsOf("mp4-png.mov"), ElementsAre(MP4StreamType{0, "png "}));
    EXPECT_EQ(OrientationOf("mp4-png-upper.MOV").width, 64);
}

TEST(MP4Samples, TheLastOfTwoVideos) {
    EXPECT_EQ(OrientationOf("mp4-two-videos.mp4").width, 32);
}

TEST(MP4Samples, SoundAlone) {
    EXPECT_EQ(OrientationOf("mp4-audio-only.mp4"), MediaOrientation());
    EXPECT_EQ(FirstTrackOf("mp4-audio-only.m4a").volume, 1);
}

struct Findings {
    std::vector<MP4StreamType> streams;
    MediaOrientation orientation;
    std::optional<std::vector<MP4TrackInfo>> tracks;
};

Findings FindAll(const std::wstring& path) {
    return {ReadMP4StreamTypes(path), ReadMediaOrientation(path), TracksOf(path)};
}

// A file has one index: a walk that ends well has met all of it or nothing. (Of a file that does
// not parse whole, for a few bytes behind its last box, more may come to light.)
void ExpectAllOrNothing(const Findings& cut, const Findings& whole) {
    if (!whole.tracks.has_value()) {
        return;
    }
    EXPECT_TRUE(cut.streams.empty() || cut.streams == whole.streams);
    EXPECT_TRUE(cut.orientation == MediaOrientation() || cut.orientation == whole.orientation);
    EXPECT_TRUE(!cut.tracks.has_value() || cut.tracks->empty() || cut.tracks == whole.tracks);
}

std::uint64_t BigEndian(const std::string& bytes, std::size_t offset, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
        value = value << 8 | static_cast<unsigned char>(bytes.at(offset + i));
    }
    return value;
}

// Where the top-level box at `offset` ends.
std::size_t EndOfBox(const std::string& bytes, std::size_t offset) {
    const std::uint64_t size = BigEndian(bytes, offset, 4);
    if (size == 0) {
        return bytes.size();
    }
    const bool isWide = size == 1 && offset + 16 <= bytes.size();
    return offset + (isWide ? BigEndian(bytes, offset + 8, 8) : size);
}

// Where to cut: behind every byte but those of media. From the last to the first, so that one file
// can be cut shorter and shorter.
std::vector<std::size_t> Cuts(const std::string& bytes) {
    constexpr std::size_t ofMedia = 18; // its header, at the longest, and a little of what follows
    std::vector<std::size_t> cuts;
    for (std::size_t offset = 0; offset + 8 <= bytes.size();) {
        const std::size_t end = std::max(EndOfBox(bytes, offset), offset + 8);
        const bool isMedia = bytes.compare(offset + 4, 4, "mdat") == 0;
        const std::size_t last = std::min(isMedia ? offset + ofMedia : end, bytes.size());
        for (std::size_t cut = offset; cut < last; ++cut) {
            cuts.push_back(cut);
        }
        offset = end;
    }
    std::reverse(cuts.begin(), cuts.end());
    return cuts;
}

// Cuts a file of these bytes behind every `step`-th byte that is one of a header's.
void ExpectCutsToBeHarmless(const std::string& name, const std::string& bytes, std::size_t step) {
    const TemporaryFolder folder;
    const std::string path = folder.Write(name, bytes);
    const Findings whole = FindAll(Wide(path));
    const std::vector<std::size_t> cuts = Cuts(bytes);
    for (std::size_t i = 0; i < cuts.size(); i += step) {
        SCOPED_TRACE(cuts[i]);
        std::filesystem::resize_file(path, cuts[i]);
        ExpectAllOrNothing(FindAll(Wide(path)), whole);
    }
}

class MP4Cut : public testing::TestWithParam<std::string> {};

TEST_P(MP4Cut, AtEveryByteOfItsHeaders) {
    const std::string bytes = ReadWholeFile(MadeMedia(GetParam()));
    ASSERT_GT(Cuts(bytes).size(), 500u);
    ExpectCutsToBeHarmless(GetParam(), bytes, 1);
}

// The finders over bytes in memory.
Findings FindAllIn(std::string_view bytes) {
    const auto parse = [&](auto& finder) {
        try {
            finder.Parse(L"");
        } catch (const MP4ParseException&) {
            return false;
        }
        return true;
    };
    MP4ParserFindStreamTypes streams(std::make_unique<MemoryStreamReader>(bytes));
    MP4ParserFindOrientation orientation(std::make_unique<MemoryStreamReader>(bytes));
    DSMediaDetNS::MP4Parser tracks(std::make_unique<MemoryStreamReader>(bytes));
    Findings found;
    found.streams = parse(streams) ? streams.StreamTypes() : found.streams;
    found.orientation = parse(orientation) ? orientation.Orientation() : found.orientation;
    found.tracks = parse(tracks) ? std::optional(tracks.Tracks()) : std::nullopt;
    return found;
}

// Behind every byte of their headers. They have so many that the cuts are made in memory; of the
// few files whose headers are a world of their own, each so many-th byte has to do.
TEST(MP4Samples, RealFilesCutAtEveryByteOfTheirHeaders) {
    const std::vector<std::filesystem::path> files = RealMedia("mp4");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    constexpr std::size_t most = 20'000;
    for (const std::filesystem::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        const std::string bytes = ReadWholeFile(file);
        const Findings whole = FindAllIn(bytes);
        const std::vector<std::size_t> cuts = Cuts(bytes);
        for (std::size_t i = 0; i < cuts.size(); i += cuts.size() / most + 1) {
            SCOPED_TRACE(cuts[i]);
            ExpectAllOrNothing(FindAllIn(std::string_view(bytes).substr(0, cuts[i])), whole);
        }
    }
}

// The same on disk, where some cuts of each have to do.
TEST(MP4Samples, RealFilesCutHereAndThere) {
    const std::vector<std::filesystem::path> files = RealMedia("mp4");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    for (const std::filesystem::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        const std::string bytes = ReadWholeFile(file);
        const std::size_t step = Cuts(bytes).size() / 64 + 1;
        ExpectCutsToBeHarmless("a.mp4", bytes, step);
    }
}

std::string TestName(const testing::TestParamInfo<std::string>& info) {
    std::string name = info.param;
    std::replace_if(
        name.begin(), name.end(), [](char letter) { return !std::isalnum(letter); }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Samples, MP4Cut, testing::ValuesIn(Mp4Samples()), TestName);

// Whatever it is: it comes to an end, with one of the results that there are.
TEST(MP4Samples, DamagedFilesAndOthers) {
    const std::vector<std::filesystem::path> files = RealMedia("damaged");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    const TemporaryFolder folder;
    for (const std::filesystem::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        const std::string copy = folder / "a.mp4"; // the name that makes all three look into it
        std::filesystem::remove(copy);
        std::filesystem::create_symlink(std::filesystem::absolute(file), copy);
        const Findings found = FindAll(Wide(copy));
        EXPECT_TRUE(found.tracks.has_value() || found.streams.empty());
    }
}

} // namespace
