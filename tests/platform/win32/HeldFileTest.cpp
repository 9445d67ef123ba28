#include "platform/win32/HeldFile.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TemporaryFolder.h"

namespace fs = std::filesystem;
using win32::HeldFile;
using win32::RemoveUnlessHeld;

TEST(HeldFile, IsMadeEmptyAndForItsOwnerAlone) {
    const TemporaryFolder folder;
    const auto file = HeldFile::Create(folder / "a");
    ASSERT_NE(file, nullptr);

    struct stat made {};

    ASSERT_EQ(stat((folder / "a").c_str(), &made), 0);
    EXPECT_EQ(made.st_size, 0);
    EXPECT_EQ(made.st_mode & 0777, 0600U);
}

TEST(HeldFile, TakesNobodysPlace) {
    const TemporaryFolder folder;
    folder.Write("a", "kept");
    EXPECT_EQ(HeldFile::Create(folder / "a"), nullptr);
    EXPECT_EQ(ReadWholeFile(folder / "a"), "kept");
    fs::create_symlink(folder / "nowhere", folder / "link");
    EXPECT_EQ(HeldFile::Create(folder / "link"), nullptr);
    EXPECT_EQ(HeldFile::Create(folder / "none/a"), nullptr);
}

TEST(HeldFile, IsNotRemovedWhileItIsHeld) {
    const TemporaryFolder folder;
    auto file = HeldFile::Create(folder / "a");
    EXPECT_FALSE(RemoveUnlessHeld(folder / "a"));
    EXPECT_TRUE(fs::exists(folder / "a"));
    folder.Write("a", "written by somebody else");
    EXPECT_FALSE(RemoveUnlessHeld(folder / "a"));
    file.reset();
    EXPECT_TRUE(fs::exists(folder / "a")); // it stays
    EXPECT_TRUE(RemoveUnlessHeld(folder / "a"));
    EXPECT_FALSE(fs::exists(folder / "a"));
}

TEST(RemoveUnlessHeld, AnswersWhetherItRemoved) {
    const TemporaryFolder folder;
    EXPECT_FALSE(RemoveUnlessHeld(folder / "none"));
    fs::create_directory(folder / "empty");
    EXPECT_TRUE(RemoveUnlessHeld(folder / "empty"));
    fs::create_directory(folder / "full");
    folder.Write("full/a", "");
    EXPECT_FALSE(RemoveUnlessHeld(folder / "full"));
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_TRUE(RemoveUnlessHeld(folder / "pipe")); // without a wait for a writer
}
