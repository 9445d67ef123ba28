#include "zanthe/containers/MediaPathExists.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "platform/com/ComPtr.h"
#include "platform/win32/Text.h"
#include "tests/support/CompoundFile.h"
#include "tests/support/TemporaryFolder.h"
#include "zanthe/containers/StructuredStorage.h"

namespace {

class MediaPath : public testing::Test {
protected:
    MediaPath() {
        WriteCompoundFile(folder / "Mixed.orirec",
                          {{"Screen_Stream.avi", "x"}, {"Audio.wav", "y"}});
        folder.Write("none.orirec", "no compound file");
        folder.Write("none.orirec!Audio.wav", "a file of that name");
        folder.Write("plain.mp4", "");
    }

    // With backslashes, as the library's callers write it.
    bool Exists(const std::string& name, wchar_t slash = L'\\') const {
        std::wstring path = win32::Utf8ToWide(folder / name);
        std::replace(path.begin(), path.end(), L'/', slash);
        return MediaPathExists(path);
    }

    TemporaryFolder folder;
};

TEST_F(MediaPath, PlainFilesAreLookedFor) {
    EXPECT_TRUE(Exists("plain.mp4"));
    EXPECT_TRUE(Exists("plain.mp4", L'/'));
    EXPECT_FALSE(Exists("missing.mp4"));
    EXPECT_TRUE(Exists("Mixed.orirec"));
    EXPECT_TRUE(Exists("Mixed.orirec", L'/'));
    EXPECT_TRUE(Exists(""));
    EXPECT_FALSE(MediaPathExists(L""));
}

TEST_F(MediaPath, MembersAreLookedForWhateverTheirCase) {
    EXPECT_TRUE(Exists("Mixed.orirec!Screen_Stream.avi"));
    EXPECT_TRUE(Exists("Mixed.orirec!screen_STREAM.avi"));
    EXPECT_TRUE(Exists("Mixed.orirec!Audio.wav"));
    EXPECT_FALSE(Exists("Mixed.orirec!Camera_Stream.wmv"));
}

TEST_F(MediaPath, TheMarkIsKnownWhateverItsCase) {
    WriteCompoundFile(folder / "Loud.ORIREC", {{"Audio.wav", "y"}});
    EXPECT_TRUE(Exists("Loud.ORIREC!AUDIO.WAV"));
    EXPECT_FALSE(Exists("Loud.ORIREC!none.wav"));
}

TEST_F(MediaPath, TheFirstMarkCounts) {
    WriteCompoundFile(folder / "two.orirec", {{"b.orirec!c", "y"}});
    EXPECT_TRUE(Exists("two.orirec!b.orirec!c"));
    EXPECT_FALSE(Exists("two.orirec!b.orirec!d"));
}

TEST_F(MediaPath, AMemberNeedsAFolderWithABackslash) {
    EXPECT_FALSE(Exists("Mixed.orirec!Audio.wav", L'/'));
    EXPECT_FALSE(MediaPathExists(L"Mixed.orirec!Audio.wav"));
}

TEST_F(MediaPath, AnEmptyMemberIsTheWholeName) {
    EXPECT_FALSE(Exists("Mixed.orirec!"));
    folder.Write("b.orirec!", "");
    EXPECT_TRUE(Exists("b.orirec!"));
}

TEST_F(MediaPath, WhatIsNoCompoundFileIsLookedForByItsWholeName) {
    EXPECT_TRUE(Exists("none.orirec!Audio.wav"));
    EXPECT_FALSE(Exists("none.orirec!Other.wav"));
    EXPECT_FALSE(Exists("missing.orirec!Audio.wav"));
}

TEST_F(MediaPath, AStorageTellsItsMembers) {
    Sorbutl::StructuredStorage storage;
    std::vector<std::wstring> names{L"before"};
    EXPECT_FALSE(storage.EnumElementNames(names));
    ASSERT_TRUE(storage.Open(win32::Utf8ToWide(folder / "Mixed.orirec")));
    EXPECT_TRUE(storage.EnumElementNames(names));
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::wstring>{L"Audio.wav", L"Screen_Stream.avi", L"before"}));
    com::ComPtr<IStream> stream;
    EXPECT_TRUE(storage.OpenStream(L"Audio.wav", stream.Put()));
    char byte = 0;
    EXPECT_EQ(stream->Read(&byte, 1, nullptr), S_OK);
    EXPECT_EQ(byte, 'y');
    EXPECT_FALSE(storage.OpenStream(L"None", stream.Put()));
    EXPECT_LT(storage.LastResult(), 0);
    storage.Close();
    EXPECT_EQ(storage.LastResult(), S_OK);
    EXPECT_FALSE(storage.OpenStream(L"Audio.wav", stream.Put()));
    EXPECT_FALSE(storage.Open(win32::Utf8ToWide(folder / "plain.mp4")));
}

// The one opened last is asked; all of them are closed.
TEST_F(MediaPath, StoragesAreOpenedOnTopOfEachOther) {
    WriteCompoundFile(folder / "top.orirec", {{"Top.wav", "t"}});
    Sorbutl::StructuredStorage storage;
    ASSERT_TRUE(storage.Open(win32::Utf8ToWide(folder / "Mixed.orirec")));
    ASSERT_TRUE(storage.Open(win32::Utf8ToWide(folder / "top.orirec")));
    std::vector<std::wstring> names;
    EXPECT_TRUE(storage.EnumElementNames(names));
    EXPECT_EQ(names, std::vector<std::wstring>{L"Top.wav"});
    com::ComPtr<IStream> stream;
    EXPECT_FALSE(storage.OpenStream(L"Audio.wav", stream.Put()));
    EXPECT_TRUE(storage.OpenStream(L"Top.wav", stream.Put()));
    storage.Close();
    EXPECT_FALSE(storage.EnumElementNames(names));
    EXPECT_EQ(names.size(), 1U);
}

// For transactions, without a copy of what is there.
static_assert((STGM_TRANSACTED | STGM_NOSNAPSHOT) == 0x210000);

} // namespace
