#include "tools/zanthe/OutputFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.h"
#include "tests/tools/WithoutPrivileges.h"
#include "tools/zanthe/CommandError.h"

using Program::OutputFile;
namespace fs = std::filesystem;

namespace {

std::string RefusalOf(const std::string& path) {
    try {
        OutputFile output(path);
        return {};
    } catch (const Program::CommandError& error) {
        return error.what();
    }
}

void Replace(const std::string& path, const std::string& text) {
    OutputFile output(path);
    std::ofstream(output.TemporaryPath()) << text;
    output.Commit();
}

std::ptrdiff_t FilesIn(const fs::path& folder) {
    return std::distance(fs::directory_iterator(folder), {});
}

} // namespace

TEST(OutputFile, IsThereAfterCommit) {
    TemporaryFolder folder;
    const std::string path = folder / "out.wav";
    Replace(path, "new");
    EXPECT_EQ(ReadWholeFile(path), "new");
    EXPECT_EQ(FilesIn(folder.Path()), 1);
}

TEST(OutputFile, ReplacesOnlyAtCommit) {
    TemporaryFolder folder;
    const std::string path = folder.Write("out.wav", "old");
    OutputFile output(path);
    std::ofstream(output.TemporaryPath()) << "new";
    EXPECT_EQ(ReadWholeFile(path), "old");
    output.Commit();
    EXPECT_EQ(ReadWholeFile(path), "new");
    EXPECT_EQ(FilesIn(folder.Path()), 1);
}

TEST(OutputFile, LeavesNothingWithoutCommit) {
    TemporaryFolder folder;
    {
        OutputFile output(folder / "out.wav");
        EXPECT_EQ(FilesIn(folder.Path()), 1);
        EXPECT_EQ(fs::path(output.TemporaryPath()).parent_path(), folder.Path());
    }
    EXPECT_EQ(FilesIn(folder.Path()), 0);
}

TEST(OutputFile, LeavesWhatWasThereWithoutCommit) {
    TemporaryFolder folder;
    const std::string path = folder.Write("out.wav", "old");
    { OutputFile output(path); }
    EXPECT_EQ(ReadWholeFile(path), "old");
    EXPECT_EQ(FilesIn(folder.Path()), 1);
}

TEST(OutputFile, TwoForOneTargetDoNotMeet) {
    TemporaryFolder folder;
    OutputFile first(folder / "out.wav");
    OutputFile second(folder / "out.wav");
    EXPECT_NE(first.TemporaryPath(), second.TemporaryPath());
}

TEST(OutputFile, ARelativeNameIsInTheCurrentFolder) {
    TemporaryFolder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder.Path());
    Replace("out.wav", "new");
    fs::current_path(before);
    EXPECT_EQ(ReadWholeFile(folder / "out.wav"), "new");
}

TEST(OutputFile, ALongNameIsNoTroubleToTheTemporaryOne) {
    TemporaryFolder folder;
    const std::string path = folder / std::string(255, 'x');
    Replace(path, "new");
    EXPECT_EQ(ReadWholeFile(path), "new");
}

TEST(OutputFile, GoesThroughASymbolicLink) {
    TemporaryFolder folder;
    const std::string target = folder.Write("target.wav", "old");
    const std::string link = folder / "link.wav";
    fs::create_symlink("target.wav", link);
    Replace(link, "new");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(ReadWholeFile(target), "new");
}

TEST(OutputFile, MakesTheTargetOfADanglingLink) {
    TemporaryFolder folder;
    const std::string link = folder / "link.wav";
    fs::create_symlink("target.wav", link);
    Replace(link, "new");
    EXPECT_EQ(ReadWholeFile(folder / "target.wav"), "new");
}

TEST(OutputFile, ALinkToItselfIsRefused) {
    TemporaryFolder folder;
    const std::string link = folder / "link.wav";
    fs::create_symlink("link.wav", link);
    EXPECT_EQ(RefusalOf(link), link + ": cannot be written: Too many levels of symbolic links");
}

TEST(OutputFile, KeepsThePermissionsOfWhatItReplaces) {
    TemporaryFolder folder;
    const std::string path = folder.Write("out.wav", "old");
    fs::permissions(path, static_cast<fs::perms>(0640));
    Replace(path, "new");
    EXPECT_EQ(fs::status(path).permissions(), static_cast<fs::perms>(0640));
}

TEST(OutputFile, ANewFileHasThePermissionsOfAnyNewFile) {
    TemporaryFolder folder;
    const mode_t before = umask(0027);
    Replace(folder / "out.wav", "new");
    EXPECT_EQ(umask(before), 0027U);
    EXPECT_EQ(fs::status(folder / "out.wav").permissions(), static_cast<fs::perms>(0640));
}

TEST(OutputFile, RefusesAFolderThatIsNotThere) {
    TemporaryFolder folder;
    const std::string path = folder / "nowhere/out.wav";
    EXPECT_EQ(RefusalOf(path), path + ": cannot be written: no such folder");
    const std::string below = folder.Write("file", "x") + "/out.wav";
    EXPECT_EQ(RefusalOf(below), below + ": cannot be written: no such folder");
}

TEST(OutputFile, RefusesAFolderAsTheTarget) {
    TemporaryFolder folder;
    const std::string path = folder.Path().string();
    EXPECT_EQ(RefusalOf(path), path + ": cannot be written: is a folder");
    EXPECT_EQ(RefusalOf(path + "/"), path + "/: cannot be written: is a folder");
}

TEST(OutputFile, RefusesWhatNamesNoFile) {
    TemporaryFolder folder;
    EXPECT_EQ(RefusalOf(""), "\"\": cannot be written: names no file");
    const std::string path = folder / "nowhere/";
    EXPECT_EQ(RefusalOf(path), path + ": cannot be written: names no file");
}

// A rename would put a file in the device's place, for everybody.
TEST(OutputFile, RefusesADevice) {
    EXPECT_EQ(RefusalOf("/dev/null"), "/dev/null: cannot be written: is not a regular file");
}

TEST(OutputFile, RefusesAFolderThatTakesNoFiles) {
    EXPECT_NE(RefusalOf("/sys/out.wav").find("/sys/out.wav: cannot be written: "),
              std::string::npos);
}

TEST(OutputFile, RefusesAFileThatMayNotBeWritten) {
    TemporaryFolder folder;
    fs::permissions(folder.Path(), fs::perms::all);
    const std::string path = folder.Write("out.wav", "old");
    fs::permissions(path, static_cast<fs::perms>(0444));
    WithoutPrivileges nobody;
    EXPECT_EQ(RefusalOf(path), path + ": cannot be written: Permission denied");
}

TEST(OutputFile, RefusesAFolderThatMayNotBeWritten) {
    TemporaryFolder folder;
    fs::permissions(folder.Path(), static_cast<fs::perms>(0555));
    std::string refusal;
    {
        WithoutPrivileges nobody;
        refusal = RefusalOf(folder / "out.wav");
    }
    fs::permissions(folder.Path(), fs::perms::all);
    EXPECT_EQ(refusal, (folder / "out.wav") + ": cannot be written: Permission denied");
}

// Their links lead to whatever file the shell has opened there, which is not ours to replace.
TEST(OutputFile, RefusesTheNameOfAnOpenFile) {
    TemporaryFolder folder;
    const std::string path = folder.Write("open", "old");
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
    for (const std::string& name :
         {"/dev/fd/" + std::to_string(file), "/proc/self/fd/" + std::to_string(file)}) {
        EXPECT_EQ(RefusalOf(name), name + ": cannot be written: names an open file");
    }
    close(file);
    EXPECT_EQ(RefusalOf("/dev/stderr"), "/dev/stderr: cannot be written: names an open file");
    EXPECT_EQ(FilesIn(folder.Path()), 1);
}

TEST(OutputFile, KnowsTheNamesOfStandardOutput) {
    for (const char* name : {"-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"}) {
        EXPECT_TRUE(OutputFile::IsStandardOutput(name)) << name;
    }
    for (const char* name : {"./-", "", "--", "stdout", "/dev/fd/2"}) {
        EXPECT_FALSE(OutputFile::IsStandardOutput(name)) << name;
    }
}
