#include "zanthe/analysis/PngMov.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"

namespace {

bool IsPngMov(const std::string& path) {
    return IsMovWithPngVideo(win32::Utf8ToWide(path));
}

std::string PngMovBytes() {
    return ReadWholeFile(MadeMedia("classify/png.mov"));
}

TEST(IsMovWithPngVideo, TellsPngFromOtherPictures) {
    EXPECT_TRUE(IsPngMov(MadeMedia("classify/png.mov")));
    EXPECT_FALSE(IsPngMov(MadeMedia("classify/h264.mov")));
}

TEST(IsMovWithPngVideo, FindsPngBehindAnotherTrack) {
    EXPECT_TRUE(IsPngMov(MadeMedia("classify/audio-then-png.mov")));
}

TEST(IsMovWithPngVideo, TheNameMustSayMov) {
    const TemporaryFolder folder;
    EXPECT_TRUE(IsPngMov(folder.Write("a.MOV", PngMovBytes())));
    EXPECT_FALSE(IsPngMov(folder.Write("a.mp4", PngMovBytes())));
    EXPECT_FALSE(IsPngMov(folder.Write("mov", PngMovBytes())));
}

TEST(IsMovWithPngVideo, TheTrackMustBeOfVideo) {
    const TemporaryFolder folder;
    std::string bytes = PngMovBytes();
    const std::size_t handler = bytes.find("mhlrvide");
    ASSERT_NE(handler, std::string::npos);
    bytes.replace(handler, 8, "mhlrsoun");
    EXPECT_FALSE(IsPngMov(folder.Write("sound.mov", bytes)));
}

TEST(IsMovWithPngVideo, TheCodecIsExact) {
    const TemporaryFolder folder;
    std::string bytes = PngMovBytes();
    const std::size_t codec = bytes.rfind("png ");
    ASSERT_NE(codec, std::string::npos);
    bytes.replace(codec, 4, "PNG ");
    EXPECT_FALSE(IsPngMov(folder.Write("other.mov", bytes)));
}

TEST(IsMovWithPngVideo, FalseForWhatCannotBeRead) {
    const TemporaryFolder folder;
    EXPECT_FALSE(IsPngMov(folder / "none.mov"));
    EXPECT_FALSE(IsPngMov(folder.Write("empty.mov", "")));
    EXPECT_FALSE(IsPngMov(folder.Write("text.mov", "png png png png")));
    std::filesystem::create_directory(folder.Path() / "folder.mov");
    EXPECT_FALSE(IsPngMov(folder / "folder.mov"));
    EXPECT_FALSE(IsPngMov(""));
}

// The path is opened as it stands: a recording's member is no file.
TEST(IsMovWithPngVideo, AMemberIsNoFile) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("a.mov", PngMovBytes());
    EXPECT_FALSE(IsPngMov(path + "!video0.mp4"));
}

// It is the recording's extension that counts, also where a file of the whole name is there.
TEST(IsMovWithPngVideo, AFileNamedAsAMemberIsReadItself) {
    const TemporaryFolder folder;
    EXPECT_TRUE(IsPngMov(folder.Write("a.mov!video0.mp4", PngMovBytes())));
}

// Whoever has listed the streams already is asked for nothing but the name and the file.
TEST(IsMovWithPngVideo, GivenItsStreamsTheFileMustStillBeThere) {
    const TemporaryFolder folder;
    const std::vector<MP4StreamType> streams{{MP4TrackType::Audio, "mp4a"},
                                             {MP4TrackType::Video, "png "}};
    const std::wstring there = win32::Utf8ToWide(folder.Write("a.MOV", "anything"));
    EXPECT_TRUE(IsMovWithPngVideo(there, streams));
    EXPECT_FALSE(IsMovWithPngVideo(there, {}));
    EXPECT_FALSE(IsMovWithPngVideo(win32::Utf8ToWide(folder / "absent.mov"), streams));
    EXPECT_FALSE(IsMovWithPngVideo(win32::Utf8ToWide(folder.Write("a.mp4", "anything")), streams));
    EXPECT_FALSE(IsMovWithPngVideo(there, {{MP4TrackType::Audio, "png "}}));
}

TEST(IsMovWithPngVideo, ReadsRealFiles) {
    const auto files = RealMedia("mp4");
    if (files.empty()) {
        GTEST_SKIP() << "no real media beside the checkout";
    }
    for (const auto& file : files) {
        const bool mov = file.extension() == ".mov" || file.extension() == ".MOV";
        EXPECT_TRUE(mov || !IsPngMov(file.string())) << file;
    }
}

} // namespace
