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

// Four pictures, ten a second; the key frames are every `keyInterval`th.
void ExpectFourPictures(MP4FileHandle file, unsigned int keyInterval) {
    const MP4TrackId track = MP4FindTrackId(file, 0, MP4_VIDEO_TRACK_TYPE, 0);
    const std::uint32_t scale = MP4GetTrackTimeScale(file, track);
    ASSERT_NE(scale, 0U);
    EXPECT_EQ(MP4GetTrackDuration(file, track), std::uint64_t{scale} * 4 / 10);
    ASSERT_EQ(MP4GetTrackNumberOfSamples(file, track), 4U);
    for (MP4SampleId sample = 1; sample <= 4; ++sample) {
        EXPECT_EQ(MP4GetSampleSync(file, track, sample), (sample - 1) % keyInterval == 0) << sample;
        EXPECT_EQ(MP4GetSampleTime(file, track, sample), std::uint64_t{scale} * (sample - 1) / 10);
    }
}

TEST(Mp4v2, SamplesOfATrack) {
    ExpectFourPictures(File(MP4Read(MadeMedia("mp4-plain.mp4").c_str())).get(), 4);
}

TEST(Mp4v2, SamplesInFragments) {
    ExpectFourPictures(File(MP4Read(MadeMedia("mp4-fragmented.mp4").c_str())).get(), 2);
}

TEST(Mp4v2, SamplesThatAreNotThere) {
    const File file(MP4Read(MadeMedia("mp4-plain.mp4").c_str()));
    const MP4TrackId track = MP4FindTrackId(file.get(), 0, MP4_VIDEO_TRACK_TYPE, 0);
    for (const MP4SampleId sample : {0U, 5U, ~0U}) {
        EXPECT_EQ(MP4GetSampleSync(file.get(), track, sample), -1);
        EXPECT_EQ(MP4GetSampleTime(file.get(), track, sample), MP4_INVALID_TIMESTAMP);
    }
    for (const MP4TrackId none : {0U, 99U}) {
        EXPECT_EQ(MP4GetTrackDuration(file.get(), none), MP4_INVALID_DURATION);
        EXPECT_EQ(MP4GetTrackTimeScale(file.get(), none), 0U);
        EXPECT_EQ(MP4GetTrackNumberOfSamples(file.get(), none), 0U);
        EXPECT_EQ(MP4GetSampleSync(file.get(), none, 1), -1);
    }
    EXPECT_EQ(MP4GetTrackDuration(nullptr, 1), MP4_INVALID_DURATION);
}

TEST(Mp4v2, WhatIsNoMp4HasNoHandle) {
    const TemporaryFolder folder;
    EXPECT_EQ(MP4Read((folder / "none.mp4").c_str()), MP4_INVALID_FILE_HANDLE);
    EXPECT_EQ(MP4Read(folder.Write("text.mp4", "no boxes").c_str()), MP4_INVALID_FILE_HANDLE);
    EXPECT_EQ(MP4Read(folder.Path().c_str()), MP4_INVALID_FILE_HANDLE);
    EXPECT_EQ(MP4Read(MadeMedia("tone-44100-stereo-vbr.mp3").c_str()), MP4_INVALID_FILE_HANDLE);
}

} // namespace
