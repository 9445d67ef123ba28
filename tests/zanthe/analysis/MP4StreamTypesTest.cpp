#include "zanthe/analysis/MP4StreamTypes.h"

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"

using boxes::Box;
using boxes::Movie;
using boxes::SampleDescriptionBox;
using boxes::Track;
using boxes::TrackHeader;
using boxes::TrackHeaderBox;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

using Pairs = std::vector<std::pair<int, std::string>>;

Pairs Of(const std::string& bytes) {
    const TemporaryFolder folder;
    Pairs pairs;
    const std::wstring path = win32::Utf8ToWide(folder.Write("any.name", bytes));
    for (const MP4StreamType& stream : ReadMP4StreamTypes(path)) {
        pairs.emplace_back(stream.type, stream.codec);
    }
    return pairs;
}

std::string Header(std::uint32_t width, std::uint32_t height, std::uint32_t volume,
                   std::uint32_t version = 0) {
    TrackHeader header;
    header.version = version;
    header.width = width << 16;
    header.height = height << 16;
    header.volume = volume;
    return TrackHeaderBox(header);
}

std::string Entry(std::string_view format) {
    return SampleDescriptionBox(1, Box(format, boxes::Zeros(8)));
}

// A track that only its header and its codec tell of.
std::string WithoutHandler(const std::string& header, std::string_view format) {
    return Box("trak", header + Box("mdia", Box("minf", Box("stbl", Entry(format)))));
}

TEST(MP4StreamTypes, TheHandlerSaysWhatATrackIs) {
    const std::string file = Movie(Track(Header(0, 0, 0), "soun", Entry("mp4a")) +
                                   Track(Header(0, 0, 0), "vide", Entry("avc1")) +
                                   Track(Header(64, 48, 0x100), "text", Entry("tx3g")));
    EXPECT_THAT(Of(file), ElementsAre(Pair(1, "mp4a"), Pair(0, "avc1"), Pair(2, "tx3g")));
}

TEST(MP4StreamTypes, TheVendorsContainerIsNoneHere) {
    const std::string track = Track(Header(0, 0, 0), "soun", Entry("mp4a"));
    EXPECT_THAT(Of(Movie(Box("BSCM", track))), IsEmpty());
    EXPECT_THAT(Of(Movie(Box("moov", track))), ElementsAre(Pair(1, "mp4a")));
}

TEST(MP4StreamTypes, TracksHaveAnEnd) {
    const auto fileWith = [](std::size_t count) {
        std::string tracks;
        for (std::size_t i = 0; i < count; ++i) {
            tracks += Box("trak", "");
        }
        return Movie(tracks);
    };
    EXPECT_EQ(Of(fileWith(10'000)).size(), 10'000u);
    EXPECT_THAT(Of(fileWith(10'001)), IsEmpty());
}

TEST(MP4StreamTypes, WithoutAHandlerTheTrackHeaderDoes) {
    const std::string file = Movie(
        WithoutHandler(Header(64, 48, 0x100), "a   ") +
        WithoutHandler(Header(64, 0, 0x100), "b   ") +
        WithoutHandler(Header(0, 48, 0x100), "c   ") + WithoutHandler(Header(64, 0, 0), "d   ") +
        WithoutHandler(Header(0, 0, 0x0FF), "e   ") + WithoutHandler(Header(0, 0, 0xFF00), "f   "));
    EXPECT_THAT(Of(file), ElementsAre(Pair(0, "a   "), Pair(1, "b   "), Pair(1, "c   "),
                                      Pair(2, "d   "), Pair(2, "e   "), Pair(1, "f   ")));
}

// The fields of version 0 are looked for in version 1 too: what stands there are other fields. The
// translation in the place of the size makes a video of it.
TEST(MP4StreamTypes, Version1TrackHeadersAreReadAsVersion0) {
    EXPECT_THAT(Of(Movie(WithoutHandler(Header(64, 48, 0x100, 1), "avc1"))),
                ElementsAre(Pair(2, "avc1")));
    TrackHeader header;
    header.version = 1;
    header.matrix = {boxes::One, 0, 0, 0, boxes::One, 0, boxes::One, boxes::One, boxes::LastOne};
    EXPECT_THAT(Of(Movie(WithoutHandler(TrackHeaderBox(header), "avc1"))),
                ElementsAre(Pair(0, "avc1")));
    EXPECT_THAT(Of(Movie(Track(Header(64, 48, 0, 1), "vide", Entry("avc1")))),
                ElementsAre(Pair(0, "avc1")));
}

TEST(MP4StreamTypes, ATrackWithoutDescriptionRepeatsTheCodecBefore) {
    const std::string bare = Box("trak", Header(64, 48, 0));
    EXPECT_THAT(Of(Movie(bare + Track(Header(0, 0, 0), "soun", Entry("mp4a")) + bare)),
                ElementsAre(Pair(0, ""), Pair(1, "mp4a"), Pair(0, "mp4a")));
}

TEST(MP4StreamTypes, ATrackWithoutAnythingRepeatsTheTypeToo) {
    const std::string bare = Box("trak", "");
    EXPECT_THAT(Of(Movie(bare + Track(Header(0, 0, 0), "soun", Entry("mp4a")) + bare)),
                ElementsAre(Pair(2, ""), Pair(1, "mp4a"), Pair(1, "mp4a")));
}

// The boxes are told by their type alone: what stands where no track is goes to the next one.
TEST(MP4StreamTypes, HeadersAndDescriptionsCountWhereverTheyStand) {
    const std::string bare = Box("trak", "");
    EXPECT_THAT(Of(boxes::FileType() + Entry("avc1") + Header(64, 48, 0) + Box("moov", bare)),
                ElementsAre(Pair(0, "avc1")));
    EXPECT_THAT(Of(Movie(Entry("mp4a") + Box("trak", Box("mdia", Header(0, 0, 0x100))))),
                ElementsAre(Pair(1, "mp4a")));
    EXPECT_THAT(Of(boxes::FileType() + Box("trak", Entry("png "))), ElementsAre(Pair(2, "png ")));
}

TEST(MP4StreamTypes, TheFirstOfSeveralEntriesIsTheCodec) {
    const std::string two =
        SampleDescriptionBox(2, Box("avc1", boxes::Zeros(8)) + Box("hvc1", boxes::Zeros(8)));
    EXPECT_THAT(Of(Movie(Track(Header(64, 48, 0), "vide", two))), ElementsAre(Pair(0, "avc1")));
}

TEST(MP4StreamTypes, AHandlerOutsideOfMediaIsPassedOver) {
    const std::string track = Box("trak", Header(64, 48, 0) + boxes::HandlerBox("soun"));
    EXPECT_THAT(Of(Movie(track)), ElementsAre(Pair(0, "")));
}

TEST(MP4StreamTypes, ADescriptionInsideADescriptionIsNotDescendedInto) {
    const std::string inner = Entry("mp4a");
    EXPECT_THAT(
        Of(Movie(Track(Header(64, 48, 0), "vide", SampleDescriptionBox(1, Box("avc1", inner))))),
        ElementsAre(Pair(0, "avc1")));
}

TEST(MP4StreamTypes, AnythingButAWholeFileGivesNothing) {
    const std::string moov = Box("moov", Track(Header(64, 48, 0), "vide", Entry("png ")));
    EXPECT_THAT(Of(boxes::FileType() + moov), ElementsAre(Pair(0, "png ")));
    EXPECT_THAT(Of(moov), IsEmpty());
    EXPECT_THAT(Of(""), IsEmpty());
    EXPECT_THAT(Of(boxes::FileType() + moov + "\x01"), IsEmpty());
    EXPECT_THAT(Of(boxes::FileType() + moov.substr(0, moov.size() - 16)), IsEmpty());
    EXPECT_THAT(ReadMP4StreamTypes(L"/no/such/file.mov"), IsEmpty());
}

TEST(MP4StreamTypes, ThePathIsOpenedAsGiven) {
    const TemporaryFolder folder;
    const std::string path =
        folder.Write("a.mov", Movie(Track(Header(64, 48, 0), "vide", Entry("png "))));
    EXPECT_EQ(ReadMP4StreamTypes(win32::Utf8ToWide(path)).size(), 1u);
    EXPECT_THAT(ReadMP4StreamTypes(win32::Utf8ToWide(path + "!video1.mp4")), IsEmpty());
}

} // namespace
