#include "platform/mp4v2/Mp4v2.h"

#include <memory>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

constexpr const char* Mp4a = "mdia.minf.stbl.stsd.mp4a";

struct Closer {
    using pointer = MP4FileHandle;

    void operator()(MP4FileHandle file) const { MP4Close(file, 0); }
};

using File = std::unique_ptr<void, Closer>;

File Open(const std::string& name) {
    return File(MP4Read(MadeMedia("audio-select/" + name).c_str()));
}

TEST(Mp4v2, TracksAreCountedWithinTheirType) {
    const File file = Open("aac-behind-picture.mp4");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, MP4_VIDEO_TRACK_TYPE, 0), 1U);
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, MP4_AUDIO_TRACK_TYPE, 0), 2U);
    EXPECT_EQ(MP4FindTrackId(file.get(), 1, MP4_AUDIO_TRACK_TYPE, 0), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, nullptr, 0), 1U);
    EXPECT_EQ(MP4FindTrackId(file.get(), 1, nullptr, 0), 2U);
    EXPECT_EQ(MP4FindTrackId(file.get(), 2, nullptr, 0), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4FindTrackId(file.get(), 65535, nullptr, 0), MP4_INVALID_TRACK_ID);
}

TEST(Mp4v2, ATrackHasTheAtomOfItsCoding) {
    const File file = Open("aac-behind-picture.mp4");
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(MP4HaveTrackAtom(file.get(), 2, Mp4a));
    EXPECT_FALSE(MP4HaveTrackAtom(file.get(), 1, Mp4a));
    EXPECT_TRUE(MP4HaveTrackAtom(file.get(), 1, "mdia.minf.stbl.stsd.avc1"));
    EXPECT_FALSE(MP4HaveTrackAtom(file.get(), 1, "mdia.minf.stbl.stsd.avc"));
    EXPECT_FALSE(MP4HaveTrackAtom(file.get(), 3, Mp4a));
    EXPECT_FALSE(MP4HaveTrackAtom(file.get(), MP4_INVALID_TRACK_ID, Mp4a));
}

TEST(Mp4v2, TwoTracksOfSound) {
    const File file = Open("ac3-then-aac.mp4");
    ASSERT_NE(file, nullptr);
    const MP4TrackId first = MP4FindTrackId(file.get(), 0, MP4_AUDIO_TRACK_TYPE, 0);
    const MP4TrackId second = MP4FindTrackId(file.get(), 1, MP4_AUDIO_TRACK_TYPE, 0);
    EXPECT_NE(first, second);
    EXPECT_FALSE(MP4HaveTrackAtom(file.get(), first, Mp4a));
    EXPECT_TRUE(MP4HaveTrackAtom(file.get(), second, Mp4a));
}

// A track is what its handler says, whatever its coding is.
TEST(Mp4v2, ATypeIsThatOfTheHandler) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("audio-select/aac.mp4"));
    bytes.replace(bytes.find("soun"), 4, "abcd");
    const File file(MP4Read(folder.Write("a.mp4", bytes).c_str()));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, MP4_AUDIO_TRACK_TYPE, 0), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, "abcd", 0), 1U);
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, nullptr, 0), 1U);
    EXPECT_TRUE(MP4HaveTrackAtom(file.get(), 1, Mp4a));
}

TEST(Mp4v2, AFileOfNothingButSmallBoxesHasNoHandle) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("audio-select/aac.mp4"));
    const std::string box("\0\0\0\x08"
                          "free",
                          8);
    for (int i = 0; i < 200'000; ++i) {
        bytes += box;
    }
    EXPECT_EQ(MP4Read(folder.Write("a.mp4", bytes).c_str()), MP4_INVALID_FILE_HANDLE);
}

TEST(Mp4v2, WhatIsNoMp4HasNoHandle) {
    const TemporaryFolder folder;
    EXPECT_EQ(MP4Read((folder / "none.mp4").c_str()), MP4_INVALID_FILE_HANDLE);
    EXPECT_EQ(MP4Read(folder.Write("text.mp4", "no boxes").c_str()), MP4_INVALID_FILE_HANDLE);
    EXPECT_EQ(MP4Read(folder.Path().c_str()), MP4_INVALID_FILE_HANDLE);
    EXPECT_EQ(MP4Read(MadeMedia("tone-44100-stereo-vbr.mp3").c_str()), MP4_INVALID_FILE_HANDLE);
}

} // namespace
