#include "platform/av/TrackList.h"

#include <limits>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

using av::ReadTrackList;
using av::Track;
using av::TrackKind;

namespace {

TEST(TrackList, DescribesTracksInTheOrderOfTheFile) {
    const auto tracks = ReadTrackList(MadeMedia("classify/audio-then-png.mov"));
    ASSERT_TRUE(tracks);
    ASSERT_EQ(tracks->size(), 2U);
    const Track& sound = tracks->at(0);
    EXPECT_EQ(sound.kind, TrackKind::Audio);
    EXPECT_EQ(sound.codec, "sowt");
    EXPECT_EQ(sound.width, 0U);
    EXPECT_EQ(sound.height, 0U);
    EXPECT_EQ(sound.FramesAt(44100), 13230U);
    const Track& pictures = tracks->at(1);
    EXPECT_EQ(pictures.kind, TrackKind::Video);
    EXPECT_EQ(pictures.codec, "png ");
    EXPECT_EQ(pictures.width, 32U);
    EXPECT_EQ(pictures.height, 24U);
    EXPECT_EQ(pictures.samples, 3U);
}

TEST(TrackList, CountsThroughAllFragments) {
    const auto tracks = ReadTrackList(MadeMedia("classify/fragmented.brec"));
    ASSERT_TRUE(tracks);
    ASSERT_EQ(tracks->size(), 2U);
    EXPECT_EQ(tracks->at(0).samples, 12U);
    EXPECT_EQ(tracks->at(1).samples, 45U);
    EXPECT_NEAR(static_cast<double>(tracks->at(1).FramesAt(44100)), 44100, 1100);
}

TEST(TrackList, ACoverIsNoTrack) {
    const auto tracks = ReadTrackList(MadeMedia("classify/covered.brec"));
    ASSERT_TRUE(tracks);
    ASSERT_EQ(tracks->size(), 1U);
    EXPECT_EQ(tracks->at(0).kind, TrackKind::Audio);
}

TEST(TrackList, NothingWhereThereIsNoSuchFile) {
    const TemporaryFolder folder;
    EXPECT_FALSE(ReadTrackList(folder / "none.mp4"));
    EXPECT_FALSE(ReadTrackList(folder.Path().string()));
    EXPECT_FALSE(ReadTrackList(folder.Write("empty.mp4", "")));
    EXPECT_FALSE(ReadTrackList(folder.Write("text.mp4", "no film at all, only words")));
    EXPECT_FALSE(ReadTrackList(MadeMedia("classify/picture.avi")));
}

TEST(TrackList, NeverWaitsOnAPipe) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe.mp4";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(ReadTrackList(pipe));
}

TEST(TrackList, APathIsNoAddress) {
    EXPECT_FALSE(ReadTrackList("concat:" + MadeMedia("classify/h264.mov")));
    EXPECT_FALSE(ReadTrackList("file:" + MadeMedia("classify/h264.mov")));
}

TEST(TrackList, CutFilesGiveAnAnswer) {
    const TemporaryFolder folder;
    const std::string whole = ReadWholeFile(MadeMedia("classify/fragmented.brec"));
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 40) {
        const auto tracks = ReadTrackList(folder.Write("cut.mp4", whole.substr(0, size)));
        EXPECT_TRUE(!tracks || tracks->size() <= 2) << size;
    }
}

TEST(TrackList, CountsEveryFrameThatBegins) {
    Track track;
    track.duration = 48000;
    track.unitsPerSecond = 48000;
    EXPECT_EQ(track.FramesAt(44100), 44100U);
    track.duration = 1;
    EXPECT_EQ(track.FramesAt(44100), 1U);
    EXPECT_EQ(track.FramesAt(96000), 2U);
    track.duration = 0;
    EXPECT_EQ(track.FramesAt(44100), 0U);
}

TEST(TrackList, FramesCountFromTheFilesStart) {
    Track track;
    track.duration = 48000;
    track.unitsPerSecond = 48000;
    track.begin = 24000;
    EXPECT_EQ(track.FramesAt(44100), 66150U);
    track.begin = -1024; // what an encoder needs to begin
    EXPECT_EQ(track.FramesAt(48000), 46976U);
    track.begin = -48000;
    EXPECT_EQ(track.FramesAt(48000), 0U);
    track.begin = -50000;
    EXPECT_EQ(track.FramesAt(48000), 0U);
    track.begin = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(track.FramesAt(48000), 0U);
    track.begin = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(track.FramesAt(48000), 0U);
}

TEST(TrackList, ATrackTellsWhereItBegins) {
    const auto begins = [](const char* name) {
        const auto tracks = ReadTrackList(MadeMedia(name));
        return tracks && tracks->size() == 2 ? static_cast<double>(tracks->at(1).begin) /
                                                   static_cast<double>(tracks->at(1).unitsPerSecond)
                                             : -9.0;
    };
    EXPECT_EQ(begins("rec-late-sound.brec"), 0.5);
    // No edit list cuts in fragments.
    EXPECT_EQ(begins("rec-fragmented.brec"), -1024 / 44100.0);
    EXPECT_EQ(begins("classify/audio-then-png.mov"), 0.0);
}

TEST(TrackList, NoFramesWhereTheyCannotBeCounted) {
    Track track;
    track.duration = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(track.FramesAt(44100), 0U);
    track.duration = 10;
    EXPECT_EQ(track.FramesAt(0), 0U);
    EXPECT_EQ(track.FramesAt(-1), 0U);
}

TEST(TrackList, ReadsRealFiles) {
    const auto files = RealMedia("mp4");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    std::size_t described = 0;
    for (const auto& file : files) {
        const auto tracks = ReadTrackList(file.string());
        described += tracks && !tracks->empty() ? 1 : 0;
    }
    EXPECT_GT(described, files.size() * 9 / 10);
}

TEST(TrackList, DamagedFilesGiveAnAnswer) {
    const auto files = RealMedia("damaged");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    for (const auto& file : files) {
        const auto tracks = ReadTrackList(file.string());
        EXPECT_TRUE(!tracks || tracks->size() < 1000) << file;
    }
}

} // namespace
