#include "platform/mp4v2/Mp4v2.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/mp4v2/OwnedFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

constexpr const char* Mp4a = "mdia.minf.stbl.stsd.mp4a";

using File = OwnedFile;

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
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, nullptr, 1), MP4_INVALID_TRACK_ID);
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

// `count` pictures, `rate` a second; the key frames are every `keyInterval`th.
void ExpectPictures(const std::string& path, MP4SampleId count, unsigned int rate,
                    unsigned int keyInterval) {
    const File opened(MP4Read(path.c_str()));
    const MP4FileHandle file = opened.get();
    const MP4TrackId track = MP4FindTrackId(file, 0, MP4_VIDEO_TRACK_TYPE, 0);
    const std::uint64_t scale = MP4GetTrackTimeScale(file, track);
    ASSERT_NE(scale, 0U);
    EXPECT_EQ(MP4GetTrackDuration(file, track), scale * count / rate);
    ASSERT_EQ(MP4GetTrackNumberOfSamples(file, track), count);
    for (MP4SampleId sample = 1; sample <= count; ++sample) {
        EXPECT_EQ(MP4GetSampleSync(file, track, sample), (sample - 1) % keyInterval == 0) << sample;
        EXPECT_EQ(MP4GetSampleTime(file, track, sample), scale * (sample - 1) / rate) << sample;
    }
}

TEST(Mp4v2, SamplesOfATrack) {
    ExpectPictures(MadeMedia("mp4-plain.mp4"), 4, 10, 4);
    ExpectPictures(MadeMedia("h264/plain.mp4"), 96, 24, 24);
}

// What an edit list cuts away is there all the same, and it shifts nothing.
TEST(Mp4v2, SamplesBehindAnEditList) {
    ExpectPictures(MadeMedia("h264/edit-later.mp4"), 96, 24, 24);
}

TEST(Mp4v2, SamplesInFragments) {
    ExpectPictures(MadeMedia("h264/fragmented.mp4"), 96, 24, 24);
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

File OpenRecording(const std::string& name) {
    return File(MP4Read(MadeMedia("rec-png-" + name).c_str()));
}

TEST(Mp4v2, TracksTellTheirCodingAndSize) {
    const File file = OpenRecording("third.mov");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(MP4GetNumberOfTracks(file.get(), nullptr, 0), 4U);
    EXPECT_EQ(MP4GetNumberOfTracks(file.get(), MP4_VIDEO_TRACK_TYPE, 0), 3U);
    EXPECT_EQ(MP4GetNumberOfTracks(file.get(), nullptr, 1), 0U);
    EXPECT_STREQ(MP4GetTrackMediaDataName(file.get(), 1), "sowt");
    EXPECT_STREQ(MP4GetTrackMediaDataName(file.get(), 2), "jpeg");
    EXPECT_STREQ(MP4GetTrackMediaDataName(file.get(), 3), "png ");
    EXPECT_EQ(MP4GetTrackVideoWidth(file.get(), 1), 0);
    EXPECT_EQ(MP4GetTrackVideoWidth(file.get(), 3), 61);
    EXPECT_EQ(MP4GetTrackVideoHeight(file.get(), 3), 45);
    EXPECT_EQ(MP4GetTrackVideoWidth(file.get(), 4), 80);
    EXPECT_EQ(MP4GetTrackVideoHeight(file.get(), 4), 60);
    EXPECT_EQ(MP4GetTrackMediaDataName(file.get(), 5), nullptr);
    EXPECT_EQ(MP4GetTrackVideoWidth(file.get(), 5), 0);
    EXPECT_EQ(MP4GetNumberOfTracks(nullptr, nullptr, 0), 0U);
}

TEST(Mp4v2, ATrackOfTwoCodingsHasNoName) {
    const TemporaryFolder folder;
    std::string bytes = ReadWholeFile(MadeMedia("rec-png-rgba.mov"));
    // A second description of no more than its header takes the end of the first one's box.
    const std::size_t name = bytes.find("png ", bytes.find("stsd"));
    const std::size_t table = bytes.find("stsd");
    bytes[table + 11] = 2;
    const auto sizeAt = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at + 3]); };
    const std::size_t size = sizeAt(name - 4);
    bytes[name - 1] = static_cast<char>(size - 8);
    bytes.replace(name - 4 + size - 8, 8, std::string("\0\0\0\x08jpeg", 8));
    const File file(MP4Read(folder.Write("a.mov", bytes).c_str()));
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(MP4HaveTrackAtom(file.get(), 1, "mdia.minf.stbl.stsd.jpeg"));
    EXPECT_EQ(MP4GetTrackMediaDataName(file.get(), 1), nullptr);
}

// An edit list that leaves out the encoder's delay moves no sample.
TEST(Mp4v2, TimesAreThoseOfTheMedia) {
    const File file(MP4Read(MadeMedia("sound-exact/aac-stereo.m4a").c_str()));
    for (MP4SampleId sample = 1; sample <= 4; ++sample) {
        EXPECT_EQ(MP4GetSampleTime(file.get(), 1, sample), 1024U * (sample - 1));
    }
}

TEST(Mp4v2, ASampleIsFoundByItsTime) {
    // Picture n begins at n (n + 1) / 20 seconds.
    const File file = OpenRecording("uneven.mov");
    const std::uint32_t scale = MP4GetTrackTimeScale(file.get(), 1);
    for (MP4SampleId sample = 1; sample <= 8; ++sample) {
        const MP4Timestamp begin = MP4GetSampleTime(file.get(), 1, sample);
        EXPECT_EQ(begin, std::uint64_t{scale} * sample * (sample - 1) / 20);
        EXPECT_EQ(MP4GetSampleIdFromTime(file.get(), 1, begin), sample);
        if (sample > 1) {
            EXPECT_EQ(MP4GetSampleIdFromTime(file.get(), 1, begin - 1), sample - 1);
        }
    }
    const MP4Duration end = MP4GetTrackDuration(file.get(), 1);
    EXPECT_EQ(MP4GetSampleIdFromTime(file.get(), 1, end - 1), 8U);
    EXPECT_EQ(MP4GetSampleIdFromTime(file.get(), 1, end), MP4_INVALID_SAMPLE_ID);
    EXPECT_EQ(MP4GetSampleIdFromTime(file.get(), 1, ~MP4Timestamp{0}), MP4_INVALID_SAMPLE_ID);
    EXPECT_EQ(MP4GetSampleIdFromTime(file.get(), 1, 0, true), MP4_INVALID_SAMPLE_ID);
    EXPECT_EQ(MP4GetSampleIdFromTime(file.get(), 2, 0), MP4_INVALID_SAMPLE_ID);
}

TEST(Mp4v2, SamplesAreRead) {
    for (const char* name : {"rgba.mov", "fragmented.mov"}) {
        const File file = OpenRecording(name);
        ASSERT_EQ(MP4GetTrackNumberOfSamples(file.get(), 1), 8U);
        for (const MP4SampleId sample : {8U, 1U, 4U}) {
            std::uint32_t size = MP4GetSampleSize(file.get(), 1, sample);
            ASSERT_GT(size, 100U);
            std::string bytes(size + 4, '?');
            auto* to = reinterpret_cast<std::uint8_t*>(bytes.data());
            ++size;
            ASSERT_TRUE(MP4ReadSample(file.get(), 1, sample, &to, &size));
            EXPECT_EQ(size, bytes.size() - 4);
            EXPECT_EQ(bytes.substr(0, 8), "\x89PNG\r\n\x1A\n");
            EXPECT_EQ(bytes.substr(size - 8, 4), "IEND");
            EXPECT_EQ(bytes.substr(size), "????");
            --size;
            EXPECT_FALSE(MP4ReadSample(file.get(), 1, sample, &to, &size));
        }
    }
}

TEST(Mp4v2, ASampleBeyondTheFilesEndHasNoBytes) {
    const TemporaryFolder folder;
    const std::string whole = ReadWholeFile(MadeMedia("rec-png-rgba.mov"));
    // The media data come before the tables, so these move to the front.
    const std::size_t tables = whole.find("moov") - 4;
    std::string bytes = whole.substr(0, whole.find("mdat") - 4) + whole.substr(tables);
    const File file(MP4Read(folder.Write("a.mov", bytes).c_str()));
    ASSERT_NE(file, nullptr);
    ASSERT_EQ(MP4GetTrackNumberOfSamples(file.get(), 1), 8U);
    EXPECT_EQ(MP4GetSampleSize(file.get(), 1, 8), 0U);
    std::vector<std::uint8_t> room(100'000);
    std::uint8_t* to = room.data();
    std::uint32_t size = 100'000;
    EXPECT_FALSE(MP4ReadSample(file.get(), 1, 8, &to, &size));
    EXPECT_EQ(size, 100'000U);
    EXPECT_EQ(MP4GetSampleSize(file.get(), 1, 9), 0U);
    EXPECT_FALSE(MP4ReadSample(file.get(), 1, 9, &to, &size));
    EXPECT_FALSE(MP4ReadSample(file.get(), 1, 1, nullptr, &size));
    EXPECT_FALSE(MP4ReadSample(file.get(), 1, 1, &to, nullptr));
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
    EXPECT_EQ(MP4Read(nullptr), MP4_INVALID_FILE_HANDLE);
    EXPECT_EQ(MP4Read(folder.Write("text.mp4", "no boxes").c_str()), MP4_INVALID_FILE_HANDLE);
    EXPECT_EQ(MP4Read(folder.Path().c_str()), MP4_INVALID_FILE_HANDLE);
    EXPECT_EQ(MP4Read(MadeMedia("tone-44100-stereo-vbr.mp3").c_str()), MP4_INVALID_FILE_HANDLE);
}

} // namespace
