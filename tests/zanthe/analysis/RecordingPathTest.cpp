#include "zanthe/analysis/RecordingPath.h"

#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace {

std::int32_t IndexOf(const std::wstring& member) {
    std::int32_t index = -77;
    RecordingPath::ClassifyMember(member, &index);
    return index;
}

std::int32_t KindOf(const std::wstring& member) {
    return RecordingPath::ClassifyMember(member, nullptr);
}

TEST(RecordingPath, NumberedMember) {
    const RecordingPath path(std::wstring(L"d:/a/b.brec!video2.mp4"));
    EXPECT_EQ(path.directory, L"d:/a/");
    EXPECT_EQ(path.kind, 1);
    EXPECT_EQ(path.fileName, L"b.brec!video2.mp4");
    EXPECT_EQ(path.name, L"b.brec");
    EXPECT_EQ(path.index, 2);
    EXPECT_EQ(path.memberCode, 0);
    EXPECT_EQ(path.GetExtension(), L"brec");
    EXPECT_EQ(path.GetContainerPath(), L"d:/a/b.brec");
}

TEST(RecordingPath, PlainPath) {
    const RecordingPath path(std::wstring(L"d:\\a\\clip.MP4"));
    EXPECT_EQ(path.directory, L"d:\\a\\");
    EXPECT_EQ(path.kind, 0);
    EXPECT_EQ(path.fileName, L"clip.MP4");
    EXPECT_EQ(path.name, L"clip.MP4");
    EXPECT_EQ(path.index, 0);
    EXPECT_EQ(path.memberCode, 0);
    EXPECT_EQ(path.GetExtension(), L"MP4");
    EXPECT_EQ(path.GetContainerPath(), L"d:\\a\\clip.MP4");
}

TEST(RecordingPath, Utf8) {
    const RecordingPath path(std::string("d:/\xC3\xA9/\xE2\x82\xAC.orirec!Audio.wav"));
    EXPECT_EQ(path.directory, L"d:/\u00E9/");
    EXPECT_EQ(path.name, L"\u20AC.orirec");
    EXPECT_EQ(path.kind, 6);
}

TEST(RecordingPath, EmptyAndFolder) {
    const RecordingPath empty((std::wstring()));
    EXPECT_EQ(empty.directory, L"");
    EXPECT_EQ(empty.fileName, L"");
    EXPECT_EQ(empty.GetContainerPath(), L"");
    EXPECT_EQ(empty.GetExtension(), L"");
    const RecordingPath folder(std::wstring(L"d:/a.b/"));
    EXPECT_EQ(folder.directory, L"d:/a.b/");
    EXPECT_EQ(folder.fileName, L"");
    EXPECT_EQ(folder.GetExtension(), L"");
}

TEST(RecordingPath, TheLaterSlashSeparates) {
    EXPECT_EQ(RecordingPath(std::wstring(L"a/b\\c.brec")).directory, L"a/b\\");
    EXPECT_EQ(RecordingPath(std::wstring(L"a\\b/c.brec")).directory, L"a\\b/");
    EXPECT_EQ(RecordingPath(std::wstring(L"c.brec")).directory, L"");
}

TEST(RecordingPath, LeadingMarkIsPartOfAPlainName) {
    const RecordingPath path(std::wstring(L"d:/!Audio.wav"));
    EXPECT_EQ(path.kind, 0);
    EXPECT_EQ(path.name, L"!Audio.wav");
    EXPECT_EQ(path.memberCode, 0);
}

TEST(RecordingPath, UnknownMemberIsPartOfAPlainName) {
    const RecordingPath path(std::wstring(L"b!c.mp4"));
    EXPECT_EQ(path.kind, 0);
    EXPECT_EQ(path.index, 0);
    EXPECT_EQ(path.name, L"b!c.mp4");
    EXPECT_EQ(path.GetExtension(), L"mp4");
    EXPECT_EQ(path.GetContainerPath(), L"b!c.mp4");
}

TEST(RecordingPath, NothingBehindTheMarkIsPartOfAPlainName) {
    const RecordingPath path(std::wstring(L"b.brec!"));
    EXPECT_EQ(path.kind, 0);
    EXPECT_EQ(path.name, L"b.brec!");
    EXPECT_EQ(path.GetExtension(), L"brec!");
}

TEST(RecordingPath, MemberNamesAreExact) {
    const RecordingPath path(std::wstring(L"a.orirec!SCREEN_STREAM.AVI"));
    EXPECT_EQ(path.kind, 0);
    EXPECT_EQ(path.name, L"a.orirec!SCREEN_STREAM.AVI");
    EXPECT_EQ(path.GetExtension(), L"AVI");
}

TEST(RecordingPath, OnlyTheLastMarkCounts) {
    const RecordingPath path(std::wstring(L"a!video1.mp4!Audio.wav"));
    EXPECT_EQ(path.kind, 6);
    EXPECT_EQ(path.name, L"a!video1.mp4");
    EXPECT_EQ(path.GetExtension(), L"mp4");
    const RecordingPath unknown(std::wstring(L"a!Audio.wav!x"));
    EXPECT_EQ(unknown.kind, 0);
    EXPECT_EQ(unknown.name, L"a!Audio.wav!x");
}

TEST(RecordingPath, AMarkInTheFolderIsNone) {
    const RecordingPath path(std::wstring(L"a.orirec!Audio.wav/b.mp4"));
    EXPECT_EQ(path.kind, 0);
    EXPECT_EQ(path.directory, L"a.orirec!Audio.wav/");
    EXPECT_EQ(path.name, L"b.mp4");
}

TEST(RecordingPath, ContainerWithoutAnExtension) {
    const RecordingPath path(std::wstring(L"a.b/c!Audio.wav"));
    EXPECT_EQ(path.kind, 6);
    EXPECT_EQ(path.GetExtension(), L"");
    EXPECT_EQ(path.GetContainerPath(), L"a.b/c");
}

TEST(RecordingPath, EveryMember) {
    const struct {
        std::wstring member;
        std::int32_t kind;
        std::int32_t index;
        std::int32_t code;
    } cases[] = {
        {L"video0.mp4", 1, 0, 0},          {L"video9.mp4", 1, 9, 0},
        {L"audio3.mp4", 2, 3, 0},          {L"track1.bsc2", 3, 1, 0},
        {L"Screen_Stream.avi", 4, 0, 100}, {L"Camera_Stream.wmv", 5, 0, 101},
        {L"Audio.wav", 6, 0, 105},         {L"SysAudio.wav", 7, 0, 100},
        {L"Events.dat", 8, 0, 0},          {L"manifest.orixml", 9, 0, 0},
    };

    for (const auto& row : cases) {
        const RecordingPath path(L"r.orirec!" + row.member);
        EXPECT_EQ(path.kind, row.kind);
        EXPECT_EQ(path.index, row.index);
        EXPECT_EQ(path.memberCode, row.code);
        EXPECT_EQ(path.name, L"r.orirec");
    }
}

TEST(RecordingPath, NumberIsNotChecked) {
    EXPECT_EQ(KindOf(L"videoX.mp4"), 1);
    EXPECT_EQ(IndexOf(L"videoX.mp4"), 'X' - '0');
    EXPECT_EQ(KindOf(L"video12.mp4"), 1);
    EXPECT_EQ(IndexOf(L"video12.mp4"), 1);
    EXPECT_EQ(KindOf(L"video.mp4"), 1);
    EXPECT_EQ(IndexOf(L"video.mp4"), '.' - '0');
    EXPECT_EQ(KindOf(L"track.bsc2"), 3);
    EXPECT_EQ(IndexOf(L"audio\U0001F3AC.mp4"), 0x1F3AC - '0');
}

TEST(RecordingPath, AnyWideCharacterInPlaceOfTheNumber) {
    std::wstring member = L"video?.mp4";
    member[5] = std::numeric_limits<wchar_t>::min();
    EXPECT_EQ(KindOf(member), 1);
    EXPECT_EQ(IndexOf(member), std::numeric_limits<std::int32_t>::max() - '0' + 1);
}

TEST(RecordingPath, NumberedNamesNeedBothEnds) {
    for (const wchar_t* member :
         {L"video2.mp", L"Video2.mp4", L"video2.MP4", L"xvideo2.mp4", L"video2.bsc2", L"track2.mp4",
          L"track2.BSC2", L"vide.mp4", L"Audio.wave", L" Audio.wav", L"Audio", L""}) {
        EXPECT_EQ(KindOf(member), 0) << testing::PrintToString(std::wstring(member));
        EXPECT_EQ(IndexOf(member), -77) << testing::PrintToString(std::wstring(member));
    }
}

TEST(RecordingPath, OnlyNumberedMembersSetTheIndex) {
    EXPECT_EQ(IndexOf(L"Audio.wav"), -77);
    EXPECT_EQ(IndexOf(L"manifest.orixml"), -77);
}

} // namespace
