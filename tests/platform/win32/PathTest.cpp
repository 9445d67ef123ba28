#include "platform/win32/Path.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

using win32::ExistingPath;

namespace {

std::string Turned(std::string path) {
    for (char& letter : path) {
        letter = letter == '/' ? '\\' : letter;
    }
    return path;
}

TEST(Path, AFileThatIsThereStaysAsGiven) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("clip.avi", "x");
    EXPECT_EQ(ExistingPath(path), path);
}

TEST(Path, BackslashesAreReadAsSlashes) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "sub");
    const std::string path = folder.Write("sub/clip.avi", "x");
    EXPECT_EQ(ExistingPath(Turned(path)), path);
    EXPECT_EQ(ExistingPath(folder / "sub\\clip.avi"), path);
}

TEST(Path, AFolderCountsToo) {
    const TemporaryFolder folder;
    EXPECT_EQ(ExistingPath(Turned(folder.Path().string())), folder.Path().string());
}

TEST(Path, ANameWithABackslashWins) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "sub");
    folder.Write("sub/clip.avi", "x");
    const std::string literal = folder.Write("sub\\clip.avi", "y");
    EXPECT_EQ(ExistingPath(literal), literal);
}

TEST(Path, WhatIsNowhereStaysAsGiven) {
    const TemporaryFolder folder;
    for (const std::string& path : {folder / "none", folder / "no\\ne", std::string()}) {
        EXPECT_EQ(ExistingPath(path), path);
    }
}

TEST(Path, ANameThatIsTooLongIsNowhere) {
    const std::string path = "\\" + std::string(100000, 'n');
    EXPECT_EQ(ExistingPath(path), path);
}

TEST(Path, BytesThatAreNotUtf8AreKept) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.Path() / "s\xE9");
    const std::string path = folder.Write("s\xE9/\xFF.avi", "x");
    EXPECT_EQ(ExistingPath(folder / "s\xE9\\\xFF.avi"), path);
}

} // namespace
