#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "platform/mp4v2/Mp4v2.h"
#include "tests/platform/av/SoundFiles.h"
#include "tests/platform/mp4v2/OwnedFile.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

using File = OwnedFile;

File Read(const std::string& path) {
    return File(MP4Read(path.c_str()));
}

File Create(const std::string& path) {
    return File(MP4Create(path.c_str(), 0));
}

// Copies the first sound track and answers whether that worked.
bool CopySound(const std::string& from, const std::string& to) {
    const File source = Read(from);
    const File copy = Create(to);
    EXPECT_TRUE(MP4SetTimeScale(copy.get(), MP4GetTimeScale(source.get())));
    const MP4TrackId track = MP4FindTrackId(source.get(), 0, MP4_AUDIO_TRACK_TYPE, 0);
    return MP4CopyTrack(source.get(), track, copy.get(), false) != MP4_INVALID_TRACK_ID;
}

class CopiedTrack : public testing::TestWithParam<const char*> {};

TEST_P(CopiedTrack, SoundsAsTheTrackDoes) {
    const TemporaryFolder folder;
    const std::string path = MadeMedia(std::string("sound-exact/") + GetParam());
    const std::string copy = folder / "copy.m4a";
    ASSERT_TRUE(CopySound(path, copy));
    const auto stream = av::SoundStream::Open(path, 0);
    const auto copied = av::SoundStream::Open(copy, 0);
    ASSERT_NE(copied, nullptr);
    EXPECT_EQ(copied->Facts().format, stream->Facts().format);
    // A start that is later than 0 is told in units of the file's header.
    EXPECT_NEAR(static_cast<double>(copied->Facts().start),
                static_cast<double>(stream->Facts().start), 1e7 / 600);
    EXPECT_TRUE(ReadFrames(*copied, 0, kAll) == ReadFrames(*stream, 0, kAll));
}

INSTANTIATE_TEST_SUITE_P(Files, CopiedTrack,
                         testing::Values("aac-stereo.m4a", "aac-6.m4a", "aac-8000.m4a",
                                         "alac-24.m4a", "mp3-44100.mp4", "ac3-6.mp4",
                                         "sound-late.mp4", "sound-longer.mp4", "edit-inside.m4a",
                                         "aac-fragments.mp4"),
                         [](const auto& test) { return "File" + std::to_string(test.index); });

TEST(CopyTrack, LeavesTheOtherTracksBehind) {
    const TemporaryFolder folder;
    const std::string copy = folder / "copy.m4a";
    ASSERT_TRUE(CopySound(MadeMedia("sound-exact/sound-longer.mp4"), copy));
    const File file = Read(copy);
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, MP4_AUDIO_TRACK_TYPE, 0), 1U);
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, MP4_VIDEO_TRACK_TYPE, 0), MP4_INVALID_TRACK_ID);
    EXPECT_TRUE(MP4HaveTrackAtom(file.get(), 1, "mdia.minf.stbl.stsd.mp4a"));
}

TEST(CopyTrack, KeepsTheTimeScale) {
    const TemporaryFolder folder;
    const std::string copy = folder / "copy.m4a";
    const File source = Read(MadeMedia("sound-exact/aac-stereo.m4a"));
    {
        const File file = Create(copy);
        EXPECT_TRUE(MP4SetTimeScale(file.get(), 12345));
        EXPECT_NE(MP4CopyTrack(source.get(), 1, file.get(), false), MP4_INVALID_TRACK_ID);
    }
    EXPECT_EQ(MP4GetTimeScale(source.get()), 1000U);
    EXPECT_EQ(MP4GetTimeScale(Read(copy).get()), 12345U);
}

TEST(CopyTrack, RefusesWhatCannotBeCopied) {
    const TemporaryFolder folder;
    const std::string copy = folder / "copy.m4a";
    EXPECT_FALSE(CopySound(MadeMedia("h264/plain.mp4"), copy));                 // no sound
    EXPECT_FALSE(CopySound(MadeMedia("sound-exact/pcm-big-endian.mov"), copy)); // not in MP4
    const File source = Read(MadeMedia("sound-exact/aac-stereo.m4a"));
    const File file = Create(copy);
    EXPECT_EQ(MP4CopyTrack(nullptr, 1, file.get(), false), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4CopyTrack(source.get(), 1, nullptr, false), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4CopyTrack(source.get(), 2, file.get(), false), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4CopyTrack(source.get(), 1, source.get(), false), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4CopyTrack(file.get(), 1, file.get(), false), MP4_INVALID_TRACK_ID);
    EXPECT_NE(MP4CopyTrack(source.get(), 1, file.get(), false), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4CopyTrack(source.get(), 1, file.get(), false), MP4_INVALID_TRACK_ID); // a second
}

TEST(CopyTrack, AFileThatIsBeingMadeTellsNothing) {
    const TemporaryFolder folder;
    const File file = Create(folder / "copy.m4a");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(MP4GetTimeScale(file.get()), 0U);
    EXPECT_EQ(MP4FindTrackId(file.get(), 0, nullptr, 0), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4GetNumberOfTracks(file.get(), nullptr, 0), 0U);
    EXPECT_EQ(MP4GetTrackMediaDataName(file.get(), 1), nullptr);
    EXPECT_EQ(MP4GetTrackVideoWidth(file.get(), 1), 0);
    EXPECT_EQ(MP4GetTrackVideoHeight(file.get(), 1), 0);
    EXPECT_FALSE(MP4HaveTrackAtom(file.get(), 1, "mdia.minf.stbl.stsd.mp4a"));
    EXPECT_EQ(MP4GetTrackDuration(file.get(), 1), MP4_INVALID_DURATION);
    EXPECT_EQ(MP4GetTrackTimeScale(file.get(), 1), 0U);
    EXPECT_EQ(MP4GetTrackNumberOfSamples(file.get(), 1), 0U);
    EXPECT_EQ(MP4GetSampleSync(file.get(), 1, 1), -1);
    EXPECT_EQ(MP4GetSampleTime(file.get(), 1, 1), MP4_INVALID_TIMESTAMP);
    EXPECT_EQ(MP4GetSampleIdFromTime(file.get(), 1, 0), MP4_INVALID_SAMPLE_ID);
    EXPECT_EQ(MP4GetSampleSize(file.get(), 1, 1), 0U);
    EXPECT_FALSE(MP4SetTimeScale(file.get(), 0));
    EXPECT_FALSE(MP4SetTimeScale(nullptr, 1000));
    EXPECT_EQ(MP4GetTimeScale(nullptr), 0U);
}

TEST(CopyTrack, AFileThatCannotBeWrittenIsNone) {
    EXPECT_EQ(Create("/nothing/there/copy.m4a"), nullptr);
    EXPECT_EQ(MP4Create(nullptr, 0), MP4_INVALID_FILE_HANDLE);
    const TemporaryFolder folder;
    EXPECT_EQ(MP4Create((folder / "x.m4a").c_str(), 1), MP4_INVALID_FILE_HANDLE);
}

} // namespace
