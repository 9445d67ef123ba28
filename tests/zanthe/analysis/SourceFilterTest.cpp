#include "zanthe/analysis/SourceFilter.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/win32/Registry.h"
#include "tests/support/TemporaryFolder.h"

namespace {

constexpr GUID FileSource{
    0xE436EBB5, 0x524F, 0x11CE, {0x9F, 0x53, 0x00, 0x20, 0xAF, 0x0B, 0xA7, 0x70}};
constexpr GUID WindowsMediaSource{
    0x187463A0, 0x5BB7, 0x11D3, {0xAC, 0xBE, 0x00, 0x80, 0xC7, 0x5E, 0x24, 0x6E}};
constexpr GUID RecordingSource{
    0xD59FB900, 0xED16, 0x41EB, {0xA3, 0x9C, 0xA2, 0xAF, 0x97, 0x98, 0xA7, 0xAC}};
constexpr GUID AlternateRecordingSource{
    0x8CF33D00, 0x58CA, 0x4D63, {0x98, 0xFB, 0x37, 0x21, 0x29, 0xDE, 0xAC, 0x90}};
constexpr GUID ImageSource{
    0xD59FB903, 0xED16, 0x41EB, {0xA3, 0x9C, 0xA2, 0xAF, 0x97, 0x98, 0xA7, 0xAC}};
constexpr GUID AlternateImageSource{
    0x8CF33D04, 0x58CA, 0x4D63, {0x98, 0xFB, 0x37, 0x21, 0x29, 0xDE, 0xAC, 0x90}};
constexpr GUID NoSource{};

const std::string Key = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brannock\\Oriel Studio\\tp]\n";

class SourceFilter : public testing::Test {
protected:
    SourceFilter() { UseRegistry(""); }

    ~SourceFilter() override { win32::SetRegistryFile(""); }

    void UseRegistry(const std::string& text) {
        win32::SetRegistryFile(m_folder.Write("registry.ini", text));
    }

    TemporaryFolder m_folder;
};

TEST_F(SourceFilter, ByExtension) {
    for (const wchar_t* extension : {L"mp4", L"mov", L"mp3", L"wav", L"avi", L"mpg", L"mpeg",
                                     L"mts", L"m2ts", L"brec", L"MP4", L"Brec"}) {
        EXPECT_EQ(SelectSourceFilter(std::wstring(L"d:\\a.b\\c.") + extension), FileSource);
    }
    for (const wchar_t* extension : {L"wmv", L"wma", L"WMV"}) {
        EXPECT_EQ(SelectSourceFilter(std::wstring(L"d:\\c.") + extension), WindowsMediaSource);
    }
    for (const wchar_t* extension : {L"png", L"bmp", L"jpg", L"jpeg", L"gif", L"GIF"}) {
        EXPECT_EQ(SelectSourceFilter(std::wstring(L"d:\\c.") + extension), ImageSource);
    }
    for (const wchar_t* path : {L"c.m4a", L"c.mkv", L"c.tif", L"c.orirec", L"c.mp4 ", L"c.", L"c",
                                L"", L"c.mp4.x", L"c.mp4\\x"}) {
        EXPECT_EQ(SelectSourceFilter(path), NoSource);
    }
}

TEST_F(SourceFilter, APathWithoutADotIsItsOwnExtension) {
    EXPECT_EQ(SelectSourceFilter(L"mp4"), FileSource);
    EXPECT_EQ(SelectSourceFilter(L"d:\\mp4"), NoSource);
}

TEST_F(SourceFilter, AMemberOfALegacyRecordingComesFirst) {
    EXPECT_EQ(SelectSourceFilter(L"d:\\a.orirec!Screen_Stream.avi"), RecordingSource);
    EXPECT_EQ(SelectSourceFilter(L"d:\\A.ORIREC!Camera_Stream.wmv"), RecordingSource);
    EXPECT_EQ(SelectSourceFilter(L"d:\\a.orirec!anything"), RecordingSource);
    EXPECT_EQ(SelectSourceFilter(L"d:\\a.orirec!x\\b.mp4"), RecordingSource);
    EXPECT_EQ(SelectSourceFilter(L"d:\\a.brec!video0.mp4"), FileSource);
    EXPECT_EQ(SelectSourceFilter(L"d:\\orirec!Audio.wav"), FileSource);
}

TEST_F(SourceFilter, AlternateInstallMode) {
    UseRegistry(Key + "InstallMode = dword:00000001\n");
    EXPECT_TRUE(IsAlternateInstallMode());
    EXPECT_EQ(SelectSourceFilter(L"a.orirec!Audio.wav"), AlternateRecordingSource);
    EXPECT_EQ(SelectSourceFilter(L"a.png"), AlternateImageSource);
    EXPECT_EQ(SelectSourceFilter(L"a.mp4"), FileSource);
    EXPECT_EQ(SelectSourceFilter(L"a.wmv"), WindowsMediaSource);
    EXPECT_EQ(SelectSourceFilter(L"a.x"), NoSource);
}

TEST_F(SourceFilter, AreCalledAlikeInEitherMode) {
    EXPECT_STREQ(SourceFilterName(RecordingSource), "recording source");
    EXPECT_STREQ(SourceFilterName(AlternateRecordingSource), "recording source");
    EXPECT_STREQ(SourceFilterName(ImageSource), "image source");
    EXPECT_STREQ(SourceFilterName(AlternateImageSource), "image source");
    EXPECT_STREQ(SourceFilterName(FileSource), "file source");
    EXPECT_STREQ(SourceFilterName(WindowsMediaSource), "Windows Media source");
    EXPECT_STREQ(SourceFilterName(NoSource), "none");
    GUID other = FileSource;
    other.Data4[7] ^= 1;
    EXPECT_EQ(SourceFilterName(other), nullptr);
}

TEST_F(SourceFilter, AlternateModeIsTheNumberOneAndNothingElse) {
    EXPECT_FALSE(IsAlternateInstallMode());
    for (const char* value : {"dword:0", "dword:2", "dword:11", "1", "one", ""}) {
        UseRegistry(Key + "InstallMode = " + value + "\n");
        EXPECT_FALSE(IsAlternateInstallMode()) << value;
    }
    UseRegistry(Key + "Other = dword:1\n");
    EXPECT_FALSE(IsAlternateInstallMode());
    UseRegistry("[HKEY_CURRENT_USER\\SOFTWARE\\Brannock\\Oriel Studio\\tp]\nInstallMode=dword:1\n");
    EXPECT_FALSE(IsAlternateInstallMode());
    win32::SetRegistryFile(m_folder / "none.ini");
    EXPECT_FALSE(IsAlternateInstallMode());
}

} // namespace
