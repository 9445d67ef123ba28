#include "zanthe/analysis/MP4Parser.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/MemoryStreamReader.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"
#include "zanthe/analysis/MP4ParseException.h"

using boxes::Box;
using boxes::Movie;
using boxes::PixelAspectBox;
using boxes::SampleDescriptionBox;
using boxes::Track;
using boxes::TrackHeader;
using boxes::TrackHeaderBox;
using boxes::VisualEntry;
using DSMediaDetNS::MP4Parser;

namespace {

MP4Parser Over(const std::string& bytes, MemoryStreamReader::Work* work = nullptr) {
    return MP4Parser(std::make_unique<MemoryStreamReader>(bytes, work));
}

std::vector<MP4TrackInfo> TracksIn(const std::string& bytes) {
    MP4Parser parser = Over(bytes);
    parser.Parse(L"");
    return parser.Tracks();
}

bool Fails(const std::string& bytes) {
    try {
        TracksIn(bytes);
    } catch (const MP4ParseException&) {
        return true;
    }
    return false;
}

std::string VideoHeader(std::uint32_t version = 0) {
    TrackHeader header;
    header.version = version;
    header.trackId = 7;
    header.volume = 0x0180;
    header.matrix = boxes::Clockwise90;
    header.width = 640 << 16 | 0xFFFF;
    header.height = 480 << 16;
    return TrackHeaderBox(header);
}

// The only track of a movie with this sample description.
MP4TrackInfo TrackOf(const std::string& description, const std::string& behind = {}) {
    return TracksIn(Movie(Track(VideoHeader(), "vide", description + behind))).at(0);
}

std::string Codec(const MP4TrackInfo& track) {
    return track.codec.data();
}

TEST(MP4Parser, ReadsAWholeTrack) {
    const std::string entry = VisualEntry("avc1", 648, 488, PixelAspectBox(4, 3));
    for (const std::uint32_t version : {0u, 1u}) {
        const std::string track =
            Track(VideoHeader(version), "vide", SampleDescriptionBox(1, entry));
        const std::vector<MP4TrackInfo> tracks = TracksIn(Movie(track));
        ASSERT_EQ(tracks.size(), 1u);
        EXPECT_EQ(tracks[0].type, 0);
        EXPECT_EQ(tracks[0].width, 640);
        EXPECT_EQ(tracks[0].height, 480);
        EXPECT_EQ(tracks[0].volume, 1);
        EXPECT_EQ(tracks[0].trackId, 7);
        EXPECT_EQ(tracks[0].matrix, (MP4Matrix{0, -1, 1, 0}));
        EXPECT_EQ(tracks[0].codedWidth, 648);
        EXPECT_EQ(tracks[0].codedHeight, 488);
        EXPECT_EQ(Codec(tracks[0]), "avc1");
        EXPECT_EQ(tracks[0].parWidth, 4);
        EXPECT_EQ(tracks[0].parHeight, 3);
    }
}

TEST(MP4Parser, TracksComeInTheOrderOfTheFile) {
    TrackHeader sound;
    sound.trackId = 2;
    sound.volume = 0x100;
    const std::string audio = Track(TrackHeaderBox(sound), "soun",
                                    SampleDescriptionBox(1, Box("mp4a", boxes::Zeros(28))));
    const std::string video =
        Track(VideoHeader(), "vide", SampleDescriptionBox(1, VisualEntry("hvc1", 64, 48)));
    const std::vector<MP4TrackInfo> tracks = TracksIn(Movie(audio + video));
    ASSERT_EQ(tracks.size(), 2u);
    EXPECT_EQ(tracks[0].type, 1);
    EXPECT_EQ(tracks[0].volume, 1);
    EXPECT_EQ(tracks[0].trackId, 2);
    EXPECT_EQ(Codec(tracks[0]), "mp4a");
    EXPECT_EQ(tracks[1].type, 0);
    EXPECT_EQ(Codec(tracks[1]), "hvc1");
}

TEST(MP4Parser, DefaultsStayWhereAFileSaysNothing) {
    const MP4TrackInfo track = TracksIn(Movie(Box("trak", TrackHeaderBox({})))).at(0);
    EXPECT_EQ(track.type, 2);
    EXPECT_EQ(track.volume, 0);
    EXPECT_EQ(track.codedWidth, 0);
    EXPECT_EQ(track.codedHeight, 0);
    EXPECT_EQ(track.codec, (std::array<char, 8>{}));
    EXPECT_EQ(track.parWidth, 1);
    EXPECT_EQ(track.parHeight, 1);
    EXPECT_TRUE(TracksIn(Movie("")).empty());
    EXPECT_TRUE(TracksIn(Movie(Box("trak", ""))).empty());
}

// The only transform that comes out is one that is read one number too late: of all nine, each is
// the one that follows, and the last is the preview time.
TEST(MP4Parser, TheMoviesTransformIsReadOneNumberTooLate) {
    constexpr std::int32_t one = boxes::One;
    const boxes::Elements shifted{9, one, 2 * one, 0, 3 * one, 4 * one, 0, 5, 6};
    for (const std::uint32_t version : {0u, 1u}) {
        MP4Parser ordinary = Over(Movie(boxes::MovieHeaderBox(version, boxes::Clockwise90)));
        ordinary.Parse(L"");
        EXPECT_EQ(ordinary.MovieMatrix(), IdentityMatrix);
        MP4Parser odd = Over(Movie(boxes::MovieHeaderBox(version, shifted, 0x40000000)));
        odd.Parse(L"");
        EXPECT_EQ(odd.MovieMatrix(), (MP4Matrix{1, 3, 2, 4}));
    }
}

TEST(MP4Parser, AnUnknownHandlerLeavesTheType) {
    EXPECT_EQ(TracksIn(Movie(Track(VideoHeader(), "text", ""))).at(0).type, 2);
    EXPECT_EQ(TracksIn(Movie(Track(VideoHeader(), "vide", "") +
                             Box("trak", Box("mdia", boxes::HandlerBox("text")))))
                  .at(0)
                  .type,
              0);
}

TEST(MP4Parser, WithoutATrackHeaderAHandlerMakesARecord) {
    const std::string media = Box("mdia", boxes::HandlerBox("soun"));
    const std::vector<MP4TrackInfo> tracks = TracksIn(Movie(Box("trak", media)));
    ASSERT_EQ(tracks.size(), 1u);
    EXPECT_EQ(tracks[0].type, 1);
    EXPECT_EQ(tracks[0].trackId, 0);
}

TEST(MP4Parser, WithoutATrackHeaderADescriptionMakesARecord) {
    const std::string table = Box("minf", Box("stbl", SampleDescriptionBox(1, Box("mp4a", ""))));
    const std::vector<MP4TrackInfo> tracks = TracksIn(Movie(Box("trak", Box("mdia", table))));
    ASSERT_EQ(tracks.size(), 1u);
    EXPECT_EQ(tracks[0].type, 2);
    EXPECT_EQ(Codec(tracks[0]), "mp4a");
}

TEST(MP4Parser, WhateverTheHandlerOrTheCountARecordIsMade) {
    const std::string unknown = Box("mdia", boxes::HandlerBox("text"));
    EXPECT_EQ(TracksIn(Movie(Box("trak", unknown))), std::vector<MP4TrackInfo>(1));
    const std::string none = SampleDescriptionBox(0, "");
    EXPECT_EQ(TracksIn(Movie(Box("trak", none))), std::vector<MP4TrackInfo>(1));
}

// The boxes are told by their type alone.
TEST(MP4Parser, HeadersAndDescriptionsCountWhereverTheyStand) {
    const std::string description = SampleDescriptionBox(1, VisualEntry("hvc1", 64, 48));
    const std::vector<MP4TrackInfo> outside =
        TracksIn(boxes::FileType() + VideoHeader() + description);
    ASSERT_EQ(outside.size(), 1u);
    EXPECT_EQ(outside[0].trackId, 7);
    EXPECT_EQ(Codec(outside[0]), "hvc1");
    EXPECT_EQ(TracksIn(Movie(Box("mdia", VideoHeader()) + VideoHeader())).size(), 2u);
}

// Only inside `mdia`, and never directly inside a top-level box, does a handler tell of a track.
TEST(MP4Parser, AHandlerElsewhereSaysNothing) {
    const std::string handler = boxes::HandlerBox("vide");
    EXPECT_EQ(TracksIn(Movie(Box("trak", VideoHeader() + handler))).at(0).type, 2);
    EXPECT_EQ(TracksIn(boxes::FileType() + VideoHeader() + Box("mdia", handler)).at(0).type, 2);
    EXPECT_EQ(TracksIn(Movie(VideoHeader() + Box("mdia", handler))).at(0).type, 0);
}

// Nothing has consumed the payload then, so what stands in it is walked like any container's.
TEST(MP4Parser, ADescriptionOfNoEntriesIsWalked) {
    const std::string description = SampleDescriptionBox(0, VideoHeader());
    EXPECT_EQ(TracksIn(Movie(Box("trak", description))).size(), 2u);
}

TEST(MP4Parser, ATextTrackKeepsTypeAndCodec) {
    // A track header in its place would be taken for a track, were the entry not passed over.
    const std::string text = SampleDescriptionBox(1, Box("text", VideoHeader()));
    const std::vector<MP4TrackInfo> tracks = TracksIn(Movie(Track(VideoHeader(), "text", text)));
    ASSERT_EQ(tracks.size(), 1u);
    EXPECT_EQ(tracks[0].type, 2);
    EXPECT_EQ(Codec(tracks[0]), "");
}

TEST(MP4Parser, ATextDescriptionAloneMakesNoRecord) {
    const std::string text = SampleDescriptionBox(1, Box("text", boxes::Zeros(40)));
    EXPECT_TRUE(TracksIn(Movie(Box("trak", Box("mdia", Box("minf", Box("stbl", text)))))).empty());
}

TEST(MP4Parser, CodedSizesAreSigned) {
    const MP4TrackInfo track =
        TrackOf(SampleDescriptionBox(1, VisualEntry("avc1", 0xFFFF, 0x8000)));
    EXPECT_EQ(track.codedWidth, -1);
    EXPECT_EQ(track.codedHeight, -32768);
}

TEST(MP4Parser, OnlyAvc1IsLookedInto) {
    for (const char* format : {"avc3", "hvc1", "mp4v", "AVC1"}) {
        const std::string entry = VisualEntry(format, 64, 48, PixelAspectBox(4, 3));
        const MP4TrackInfo track = TrackOf(SampleDescriptionBox(1, entry));
        EXPECT_EQ(Codec(track), format);
        EXPECT_EQ(track.codedWidth, 0);
        EXPECT_EQ(track.parWidth, 1);
    }
}

TEST(MP4Parser, PixelAspectBehindOtherBoxes) {
    const std::string children = Box("avcC", boxes::Zeros(30)) + boxes::WideBox("colr", "nclx") +
                                 PixelAspectBox(16, 11) + Box("btrt", boxes::Zeros(12));
    const MP4TrackInfo track =
        TrackOf(SampleDescriptionBox(1, VisualEntry("avc1", 64, 48, children)));
    EXPECT_EQ(track.parWidth, 16);
    EXPECT_EQ(track.parHeight, 11);
}

TEST(MP4Parser, TheLastPixelAspectCounts) {
    const std::string children = PixelAspectBox(16, 11) + PixelAspectBox(0xFFFFFFFF, 2);
    const MP4TrackInfo track =
        TrackOf(SampleDescriptionBox(1, VisualEntry("avc1", 64, 48, children)));
    EXPECT_EQ(track.parWidth, -1);
    EXPECT_EQ(track.parHeight, 2);
}

TEST(MP4Parser, AChildOfSizeZeroEndsTheEntry) {
    const std::string children = boxes::Header("avcC", 0) + PixelAspectBox(4, 3);
    const MP4TrackInfo track =
        TrackOf(SampleDescriptionBox(1, VisualEntry("avc1", 64, 48, children)));
    EXPECT_EQ(track.codedWidth, 64);
    EXPECT_EQ(track.parWidth, 1);
}

TEST(MP4Parser, FewerThanEightBytesAtTheEndOfAnEntryAreNoChild) {
    for (std::size_t rest = 0; rest < 8; ++rest) {
        const std::string entry = VisualEntry("avc1", 64, 48, boxes::Zeros(rest));
        EXPECT_EQ(TrackOf(SampleDescriptionBox(1, entry)).codedHeight, 48) << rest;
    }
}

// A header without fields: those are then read from behind the entry.
TEST(MP4Parser, EightBytesAtTheEndOfAnEntryAreAChild) {
    const std::string entry = VisualEntry("avc1", 64, 48, boxes::Header("pasp", 8));
    const MP4TrackInfo track =
        TrackOf(SampleDescriptionBox(1, entry + boxes::U32(3) + boxes::U32(2)));
    EXPECT_EQ(track.parWidth, 3);
    EXPECT_EQ(track.parHeight, 2);
}

TEST(MP4Parser, AChildThatCannotMoveFails) {
    const std::string children = boxes::Header("avcC", 1) + boxes::U64(0) + boxes::Zeros(100);
    EXPECT_TRUE(Fails(Movie(Track(
        VideoHeader(), "vide", SampleDescriptionBox(1, VisualEntry("avc1", 64, 48, children))))));
}

// Behind the first entry the reader stands at the end of the box, and takes what follows for the
// second: here a table of times, whose size and type then pass for an entry's.
TEST(MP4Parser, ASecondEntryIsReadBehindTheBox) {
    const std::string two = VisualEntry("avc1", 64, 48) + VisualEntry("hvc1", 32, 24);
    const MP4TrackInfo track = TrackOf(SampleDescriptionBox(2, two), Box("stts", boxes::Zeros(8)));
    EXPECT_EQ(Codec(track), "stts");
    EXPECT_EQ(track.codedWidth, 64);
}

TEST(MP4Parser, AFirstEntryThatIsNotAvc1IsTheOnlyOne) {
    const std::string two = VisualEntry("hvc1", 64, 48) + VisualEntry("avc1", 32, 24);
    const MP4TrackInfo track = TrackOf(SampleDescriptionBox(2, two), Box("stts", boxes::Zeros(8)));
    EXPECT_EQ(Codec(track), "hvc1");
    EXPECT_EQ(track.codedWidth, 0);
}

TEST(MP4Parser, AnEntryBehindTheBoxMayBeAvc1Again) {
    const std::string behind = VisualEntry("avc1", 32, 24, PixelAspectBox(3, 2));
    const MP4TrackInfo track =
        TrackOf(SampleDescriptionBox(2, VisualEntry("avc1", 64, 48)), behind);
    EXPECT_EQ(Codec(track), "avc1");
    EXPECT_EQ(track.codedWidth, 32);
    EXPECT_EQ(track.parWidth, 3);
}

TEST(MP4Parser, ACountOfBillionsCostsNoMoreThanTwo) {
    const std::string behind = VisualEntry("avc1", 32, 24, PixelAspectBox(3, 2));
    MemoryStreamReader::Work two;
    MemoryStreamReader::Work billions;
    MP4Parser first =
        Over(Movie(Track(VideoHeader(), "vide",
                         SampleDescriptionBox(2, VisualEntry("avc1", 64, 48)) + behind)),
             &two);
    MP4Parser second =
        Over(Movie(Track(VideoHeader(), "vide",
                         SampleDescriptionBox(0xFFFFFFFF, VisualEntry("avc1", 64, 48)) + behind)),
             &billions);
    first.Parse(L"");
    second.Parse(L"");
    EXPECT_EQ(billions.reads, two.reads);
    EXPECT_EQ(second.Tracks().at(0).codedWidth, 32);
}

TEST(MP4Parser, WithoutEntriesTheCodecStaysEmpty) {
    const MP4TrackInfo track = TrackOf(SampleDescriptionBox(0, ""), Box("stts", boxes::Zeros(8)));
    EXPECT_EQ(Codec(track), "");
}

// The readers of these two have consumed the payload, so nothing in them is walked.
TEST(MP4Parser, TrackHeadersAndDescriptionsHaveNoChildren) {
    const std::string entry = VisualEntry("hvc1", 64, 48, TrackHeaderBox({}));
    EXPECT_EQ(TracksIn(Movie(Track(VideoHeader(), "vide", SampleDescriptionBox(1, entry)))).size(),
              1u);
}

TEST(MP4Parser, TheVendorsContainerIsNoneHere) {
    EXPECT_TRUE(TracksIn(Movie(Box("BSCM", VideoHeader()))).empty());
}

// The name is read with a length that counts the header as if it were not there.
TEST(MP4Parser, AHandlerReadsAsFarBehindItselfAsItsHeaderIsLong) {
    const std::string payload = boxes::HandlerBox("soun").substr(8);
    const auto fileWith = [](const std::string& handler, const std::string& behind) {
        return boxes::FileType() + Box("moov", Box("trak", Box("mdia", handler))) + behind;
    };
    const std::string eight = Box("free", "");
    EXPECT_EQ(TracksIn(fileWith(Box("hdlr", payload), eight)).at(0).type, 1);
    EXPECT_TRUE(Fails(fileWith(Box("hdlr", payload), "")));
    EXPECT_EQ(TracksIn(fileWith(boxes::WideBox("hdlr", payload), eight + eight)).at(0).type, 1);
    EXPECT_TRUE(Fails(fileWith(boxes::WideBox("hdlr", payload), eight)));
}

// The boxes around the handler end at its payload, which then passes for a box that runs to the end
// of the file: so nothing but the handler decides how much must follow it.
TEST(MP4Parser, AHandlerNeedsNeitherMoreNorLessBehindItself) {
    const std::string payload = boxes::HandlerBox("soun").substr(8);
    const std::string file = boxes::FileType() + boxes::Header("moov", 32) +
                             boxes::Header("trak", 24) + boxes::Header("mdia", 16) +
                             boxes::Header("hdlr", 8 + payload.size()) + payload;
    for (std::size_t behind = 0; behind < 8; ++behind) {
        EXPECT_TRUE(Fails(file + boxes::Zeros(behind))) << behind;
    }
    EXPECT_EQ(TracksIn(file + boxes::Zeros(8)).at(0).type, 1);
}

TEST(MP4Parser, TracksHaveAnEnd) {
    const auto fileWith = [](std::size_t count) {
        std::string headers;
        for (std::size_t i = 0; i < count; ++i) {
            headers += TrackHeaderBox({});
        }
        return Movie(headers);
    };
    EXPECT_EQ(TracksIn(fileWith(MP4Parser::MaxTracks)).size(), MP4Parser::MaxTracks);
    EXPECT_TRUE(Fails(fileWith(MP4Parser::MaxTracks + 1)));
}

// Behind the fields of an overlong track header the walk goes on, as in any container.
TEST(MP4Parser, WhatFollowsInsideATrackHeaderIsWalked) {
    const std::string payload = VideoHeader().substr(8) + TrackHeaderBox({});
    EXPECT_EQ(TracksIn(Movie(Box("trak", Box("tkhd", payload)))).size(), 2u);
}

TEST(MP4Parser, AFailureKeepsTheTracksBefore) {
    const std::string file =
        boxes::FileType() + boxes::Header("moov", 10'000) +
        Track(VideoHeader(), "vide", SampleDescriptionBox(1, VisualEntry("avc1", 64, 48))) +
        boxes::Header("trak", 1000) + boxes::Header("tkhd", 92) + boxes::Zeros(20);
    MP4Parser parser = Over(file);
    EXPECT_THROW(parser.Parse(L""), MP4ParseException);
    ASSERT_EQ(parser.Tracks().size(), 1u);
    EXPECT_EQ(Codec(parser.Tracks()[0]), "avc1");
}

} // namespace
