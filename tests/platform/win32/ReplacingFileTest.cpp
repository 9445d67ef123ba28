#include "platform/win32/ReplacingFile.h"

#include <filesystem>
#include <string_view>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TemporaryFolder.h"

using win32::ReplacingFile;

namespace fs = std::filesystem;

namespace {

void Put(const ReplacingFile& file, std::string_view text) {
    ASSERT_NE(file.Stream(), nullptr);
    ASSERT_EQ(std::fwrite(text.data(), 1, text.size(), file.Stream()), text.size());
}

std::size_t FilesIn(const TemporaryFolder& folder) {
    const fs::directory_iterator files(folder.Path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

TEST(ReplacingFile, AppearsWithCommit) {
    const TemporaryFolder folder;
    const std::string path = folder / "file";
    ReplacingFile file(path);
    Put(file, "new");
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(ReadWholeFile(path), "new");
    EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(ReplacingFile, WithoutCommitNothingIsLeft) {
    const TemporaryFolder folder;
    const std::string old = folder.Write("old", "old");
    for (const std::string& path : {old, folder / "fresh"}) {
        const ReplacingFile file(path);
        Put(file, "new");
    }
    EXPECT_EQ(ReadWholeFile(old), "old");
    EXPECT_EQ(FilesIn(folder), 1u);
}

TEST(ReplacingFile, ReplacesWithCommitOnly) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("file", "old");
    ReplacingFile file(path);
    Put(file, "new");
    EXPECT_EQ(ReadWholeFile(path), "old");
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(ReadWholeFile(path), "new");
}

TEST(ReplacingFile, CommitsOnce) {
    const TemporaryFolder folder;
    ReplacingFile file(folder / "file");
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(file.Stream(), nullptr);
    EXPECT_FALSE(file.Commit());
    EXPECT_TRUE(fs::exists(folder / "file"));
}

TEST(ReplacingFile, KeepsPermissions) {
    const TemporaryFolder folder;
    const std::string path = folder.Write("file", "old");
    fs::permissions(path, fs::perms(0640));
    ReplacingFile file(path);
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
}

TEST(ReplacingFile, ANewFileGetsTheUsualPermissions) {
    const TemporaryFolder folder;
    const mode_t before = umask(027);
    ReplacingFile file(folder / "file");
    umask(before);
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(fs::status(folder / "file").permissions(), fs::perms(0640));
}

TEST(ReplacingFile, ALinkStaysOne) {
    const TemporaryFolder folder;
    fs::create_directory(folder.Path() / "sub");
    const std::string target = folder.Write("sub/file", "old");
    fs::create_symlink(target, folder / "link");
    ReplacingFile file(folder / "link");
    Put(file, "new");
    EXPECT_TRUE(file.Commit());
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
    EXPECT_EQ(ReadWholeFile(target), "new");
}

TEST(ReplacingFile, ANameAsLongAsTheSystemAllows) {
    const TemporaryFolder folder;
    const std::string path = folder / std::string(255, 'n');
    ReplacingFile file(path);
    Put(file, "new");
    EXPECT_TRUE(file.Commit());
    EXPECT_EQ(ReadWholeFile(path), "new");
}

TEST(ReplacingFile, ANameWithoutAFolderIsInTheWorkingFolder) {
    const TemporaryFolder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder.Path());
    ReplacingFile file("file");
    const bool done = file.Commit();
    fs::current_path(before);
    EXPECT_TRUE(done);
    EXPECT_TRUE(fs::exists(folder / "file"));
}

TEST(ReplacingFile, WhereNoFileCanBe) {
    const TemporaryFolder folder;
    for (const std::string& path :
         {std::string(), folder / "none/file", folder.Path().string(), folder / "none/"}) {
        ReplacingFile file(path);
        EXPECT_EQ(file.Stream(), nullptr) << path;
        EXPECT_FALSE(file.Commit()) << path;
    }
    EXPECT_EQ(FilesIn(folder), 0u);
}

TEST(ReplacingFile, ADeviceIsWrittenToAndStays) {
    ReplacingFile file("/dev/null");
    Put(file, "new");
    EXPECT_TRUE(file.Commit());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST(ReplacingFile, ADeviceThatIsFullFails) {
    ReplacingFile file("/dev/full");
    Put(file, "new"); // into the stream's own buffer
    EXPECT_FALSE(file.Commit());
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(ReplacingFile, AFolderThatTookItsPlaceStays) {
    const TemporaryFolder folder;
    ReplacingFile file(folder / "name");
    fs::create_directory(folder.Path() / "name");
    EXPECT_FALSE(file.Commit());
    EXPECT_TRUE(fs::is_directory(folder / "name"));
}

} // namespace
