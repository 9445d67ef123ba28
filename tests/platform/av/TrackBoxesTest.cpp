#include "platform/av/TrackBoxes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/av/Contents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/analysis/Mp4Boxes.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string Track(std::uint32_t id, std::uint32_t version, std::string_view handler,
                  const std::string& entries) {
    boxes::TrackHeader header;
    header.trackId = id;
    header.version = version;
    return boxes::Track(boxes::TrackHeaderBox(header), handler,
                        boxes::SampleDescriptionBox(1, entries));
}

TEST(TrackBoxes, TellIdHandlerAndAllDescriptions) {
    const TemporaryFolder folder;
    const auto tracks = av::ReadTrackBoxes(folder.Write(
        "a.mp4", boxes::Movie(Track(7, 0, "soun", boxes::Box("ac-3", "") + boxes::Box("mp4a", "")) +
                              Track(9, 1, "abcd", ""))));
    ASSERT_EQ(tracks.size(), 2U);
    EXPECT_EQ(tracks[0].id, 7U);
    EXPECT_EQ(tracks[0].handler, "soun");
    EXPECT_THAT(tracks[0].descriptions, ElementsAre("ac-3", "mp4a"));
    EXPECT_EQ(tracks[1].id, 9U);
    EXPECT_EQ(tracks[1].handler, "abcd");
    EXPECT_THAT(tracks[1].descriptions, IsEmpty());
}

TEST(TrackBoxes, AFileThatIsCutAnywhereEndsQuietly) {
    const TemporaryFolder folder;
    const std::string whole = boxes::Movie(Track(7, 0, "soun", boxes::WideBox("mp4a", "")));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_LE(av::ReadTrackBoxes(folder.Write("a.mp4", whole.substr(0, size))).size(), 1U);
    }
    EXPECT_THAT(av::ReadTrackBoxes(folder / "none.mp4"), IsEmpty());
}

TEST(TrackBoxes, SizesThatCannotBeEndTheWalk) {
    const TemporaryFolder folder;
    const std::string track = Track(7, 0, "soun", "");
    for (const std::string& odd :
         {boxes::Header("free", 7), boxes::Header("free", 1) + boxes::U64(15),
          boxes::Header("free", 1) + boxes::U64(~std::uint64_t{0}), boxes::Header("free", 0)}) {
        EXPECT_EQ(av::ReadTrackBoxes(folder.Write("a.mp4", boxes::Box("moov", track + odd + track)))
                      .size(),
                  1U);
    }
}

TEST(TrackBoxes, MoreThanAHundredThousandAreTooMany) {
    const TemporaryFolder folder;
    const auto fileWith = [&](int count) {
        std::string content;
        for (int i = 1; i < count; ++i) {
            content += boxes::Box("free", "");
        }
        return folder.Write("a.mp4", boxes::Box("moov", content));
    };
    EXPECT_FALSE(av::IsTooCostlyToOpen(fileWith(100'000)));
    EXPECT_TRUE(av::IsTooCostlyToOpen(fileWith(100'001)));
    EXPECT_FALSE(av::IsTooCostlyToOpen(folder / "none.mp4"));
}

// Libavformat makes room for each, be there a byte for it or not.
TEST(TrackBoxes, SamplesThatNoBytesStandBehindAreTooMany) {
    const TemporaryFolder folder;
    const auto costly = [&](const std::string& content) {
        return av::IsTooCostlyToOpen(folder.Write("a.mp4", content));
    };
    const auto run = [](std::uint32_t count) {
        return boxes::Box(
            "moof", boxes::Box("traf", boxes::Box("trun", boxes::U32(0) + boxes::U32(count))));
    };
    const auto table = [](std::string_view type, std::uint32_t count) {
        const std::string content = boxes::U32(0) + boxes::U32(1) + boxes::U32(count);
        return boxes::Box(
            "moov",
            boxes::Box(
                "trak",
                boxes::Box("mdia",
                           boxes::Box("minf", boxes::Box("stbl", boxes::Box(type, content))))));
    };
    EXPECT_FALSE(costly(run(1'000'000)));
    EXPECT_TRUE(costly(run(1'000'001)));
    EXPECT_TRUE(costly(run(500'000) + run(500'001)));
    EXPECT_TRUE(costly(run(0xFFFFFFFF)));
    EXPECT_FALSE(costly(table("stsz", 1'000'000)));
    EXPECT_TRUE(costly(table("stsz", 1'000'001)));
    EXPECT_TRUE(costly(table("stz2", 1'000'001)));
    EXPECT_TRUE(costly(table("stsz", 600'000) + run(600'000)));
    // What the file has bytes for may be there.
    const std::string media = boxes::Box("mdat", std::string(100'000, 'x'));
    EXPECT_FALSE(costly(table("stsz", 1'600'000) + media));
    EXPECT_TRUE(costly(table("stsz", 1'700'000) + media));
}

TEST(Contents, GoByTheBytesAlone) {
    const TemporaryFolder folder;
    const std::string wav = ReadWholeFile(MadeMedia("classify/tone.wav"));
    EXPECT_EQ(av::ContentsOf(folder.Write("a.mp4", wav)), "wav");
    EXPECT_EQ(av::ContentsOf(folder.Write("a.mp3", "neither sound nor pictures")), "");
    EXPECT_EQ(av::ContentsOf(folder.Write("empty.mp3", "")), "");
    EXPECT_EQ(av::ContentsOf(folder / "none.mp3"), "");
    EXPECT_EQ(av::ContentsOf(folder.Path().string()), "");
}

} // namespace
