#include "platform/win32/FileAttributes.h"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/win32/File.h"
#include "platform/win32/PathFile.h"
#include "platform/win32/Text.h"
#include "tests/support/TemporaryFolder.h"

namespace {

DWORD AttributesOf(const std::string& path) {
    return GetFileAttributesW(win32::Utf8ToWide(path).c_str());
}

bool Exists(const std::string& path) {
    return PathFileExistsW(win32::Utf8ToWide(path).c_str()) != FALSE;
}

class FileAttributes : public testing::Test {
protected:
    TemporaryFolder m_folder;
};

TEST_F(FileAttributes, TellAFileFromAFolder) {
    EXPECT_EQ(AttributesOf(m_folder.Write("a", "")), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(AttributesOf(m_folder.Path().string()), FILE_ATTRIBUTE_DIRECTORY);
    const std::string pipe = m_folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(AttributesOf(pipe), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FileAttributes, NothingHasNone) {
    EXPECT_EQ(AttributesOf(m_folder / "none"), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(AttributesOf(""), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetFileAttributesW(nullptr), INVALID_FILE_ATTRIBUTES);
}

TEST_F(FileAttributes, OfAPathWithBackslashes) {
    std::filesystem::create_directory(m_folder.Path() / "sub");
    m_folder.Write("sub/a", "");
    EXPECT_EQ(AttributesOf(m_folder / "sub\\a"), FILE_ATTRIBUTE_NORMAL);
    EXPECT_TRUE(Exists(m_folder / "sub\\a"));
}

TEST_F(FileAttributes, APathExistsForAnythingThatIsThere) {
    EXPECT_TRUE(Exists(m_folder.Write("a", "")));
    EXPECT_TRUE(Exists(m_folder.Path().string()));
    EXPECT_FALSE(Exists(m_folder / "none"));
    EXPECT_FALSE(Exists(""));
    EXPECT_EQ(PathFileExistsW(nullptr), FALSE);
}

// A link counts as what it leads to.
TEST_F(FileAttributes, ALinkThatLeadsNowhereIsNothing) {
    std::filesystem::create_symlink(m_folder / "none", m_folder.Path() / "link");
    EXPECT_EQ(AttributesOf(m_folder / "link"), INVALID_FILE_ATTRIBUTES);
    EXPECT_FALSE(Exists(m_folder / "link"));
}

} // namespace
