#include "tools/zanthe/InputFile.h"

#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/WithoutPrivileges.h"
#include "tools/zanthe/CommandError.h"

namespace {

std::string RefusalOf(const std::string& path) {
    try {
        Program::RequireReadableFile(path);
        return {};
    } catch (const Program::CommandError& error) {
        return error.what();
    }
}

} // namespace

TEST(InputFile, TakesAFileWithContents) {
    TemporaryFolder folder;
    EXPECT_EQ(RefusalOf(folder.Write("clip.mp3", "x")), "");
}

TEST(InputFile, SaysThatThereIsNone) {
    TemporaryFolder folder;
    const std::string path = folder / "clip.mp3";
    EXPECT_EQ(RefusalOf(path), path + ": no such file");
    const std::string below = folder.Write("file", "x") + "/clip.mp3";
    EXPECT_EQ(RefusalOf(below), below + ": no such file");
    EXPECT_EQ(RefusalOf(""), "\"\": names no file");
}

TEST(InputFile, SaysThatItIsAFolder) {
    TemporaryFolder folder;
    EXPECT_EQ(RefusalOf(folder.Path()), folder.Path().string() + ": is a folder");
}

TEST(InputFile, SaysThatItIsEmpty) {
    TemporaryFolder folder;
    const std::string path = folder.Write("clip.mp3", "");
    EXPECT_EQ(RefusalOf(path), path + ": is empty");
}

TEST(InputFile, DoesNotWaitForAPipe) {
    TemporaryFolder folder;
    const std::string path = folder / "clip.mp3";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(RefusalOf(path), path + ": is not a regular file");
}

TEST(InputFile, SaysThatANameIsTooLong) {
    const std::string path(5000, 'x');
    EXPECT_EQ(RefusalOf(path), path + ": File name too long");
}

TEST(InputFile, SaysThatReadingIsNotPermitted) {
    TemporaryFolder folder;
    std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
    const std::string path = folder.Write("clip.mp3", "x");
    std::filesystem::permissions(path, std::filesystem::perms::none);
    WithoutPrivileges nobody;
    EXPECT_EQ(RefusalOf(path), path + ": permission denied");
}

TEST(InputFile, SaysThatLookingIsNotPermitted) {
    TemporaryFolder folder;
    const std::string path = folder.Write("clip.mp3", "x");
    std::filesystem::permissions(folder.Path(), std::filesystem::perms::none);
    std::string refusal;
    {
        WithoutPrivileges nobody;
        refusal = RefusalOf(path);
    }
    std::filesystem::permissions(folder.Path(), std::filesystem::perms::all);
    EXPECT_EQ(refusal, path + ": permission denied");
}
