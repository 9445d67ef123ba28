#include "zanthe/analysis/BrecStreamOrdinal.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

// The recording's tracks: pictures, sound, pictures, pictures in "bsc2", sound.
std::uint32_t Ordinal(const std::wstring& member) {
    return BrecStreamOrdinal(win32::Utf8ToWide(MadeMedia("classify/recording.brec")) + member);
}

TEST(BrecStreamOrdinal, CountsThePicturesBefore) {
    EXPECT_EQ(Ordinal(L"!video0.mp4"), 0U);
    EXPECT_EQ(Ordinal(L"!video1.mp4"), 1U);
    EXPECT_EQ(Ordinal(L"!video2.mp4"), 1U);
    EXPECT_EQ(Ordinal(L"!video3.mp4"), 2U);
}

TEST(BrecStreamOrdinal, LeavesScreenTracksOut) {
    EXPECT_EQ(Ordinal(L"!video4.mp4"), 2U);
    EXPECT_EQ(Ordinal(L"!track3.bsc2"), 2U);
    EXPECT_EQ(Ordinal(L"!track4.bsc2"), 2U);
}

TEST(BrecStreamOrdinal, CountsTheSoundBefore) {
    EXPECT_EQ(Ordinal(L"!audio0.mp4"), 0U);
    EXPECT_EQ(Ordinal(L"!audio1.mp4"), 0U);
    EXPECT_EQ(Ordinal(L"!audio2.mp4"), 1U);
    EXPECT_EQ(Ordinal(L"!audio4.mp4"), 1U);
}

TEST(BrecStreamOrdinal, NoSuchTrack) {
    EXPECT_EQ(Ordinal(L"!video5.mp4"), 0U);
    EXPECT_EQ(Ordinal(L"!audio9.mp4"), 0U);
    EXPECT_EQ(Ordinal(L"!videoX.mp4"), 0U);
    EXPECT_EQ(Ordinal(L"!video.mp4"), 0U); // number -2
}

TEST(BrecStreamOrdinal, OtherMembersHaveNone) {
    EXPECT_EQ(Ordinal(L""), 0U);
    EXPECT_EQ(Ordinal(L"!Audio.wav"), 0U);
    EXPECT_EQ(Ordinal(L"!manifest.orixml"), 0U);
}

TEST(BrecStreamOrdinal, OnlyRecordingsHaveOne) {
    const TemporaryFolder folder;
    const std::string bytes = ReadWholeFile(MadeMedia("classify/recording.brec"));
    const auto ordinal = [&](const std::string& name) {
        return BrecStreamOrdinal(win32::Utf8ToWide(folder.Write(name, bytes)) + L"!video4.mp4");
    };
    EXPECT_EQ(ordinal("a.BREC"), 2U);
    EXPECT_EQ(ordinal("a.mp4"), 0U);
    EXPECT_EQ(ordinal("brec"), 0U);
}

TEST(BrecStreamOrdinal, RecordingsThatCannotBeRead) {
    const TemporaryFolder folder;
    EXPECT_EQ(BrecStreamOrdinal(win32::Utf8ToWide(folder / "none.brec") + L"!video1.mp4"), 0U);
    EXPECT_EQ(
        BrecStreamOrdinal(win32::Utf8ToWide(folder.Write("text.brec", "words")) + L"!video1.mp4"),
        0U);
}

} // namespace
