#include "zanthe/audio/mf/RecontainerFile.h"

#include <csignal>
#include <filesystem>
#include <memory>
#include <set>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/win32/HeldFile.h"
#include "tests/support/TemporaryFolder.h"

namespace Zanthe {
namespace {

namespace fs = std::filesystem;

bool Exists(const std::string& path) {
    return fs::exists(path);
}

std::size_t EntriesIn(const TemporaryFolder& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()));
}

TEST(RecontainerFile, LivesAsLongAsItsObject) {
    const TemporaryFolder folder;
    std::string path;
    {
        const RecontainerFile file(folder.Path().string());
        path = file.Path();
        EXPECT_TRUE(Exists(path));
        EXPECT_EQ(fs::path(path).parent_path(), folder.Path());
    }
    EXPECT_FALSE(Exists(path));
    EXPECT_EQ(EntriesIn(folder), 0U);
}

TEST(RecontainerFile, IsNamedByItsPrefixAndChance) {
    const TemporaryFolder folder;
    std::set<std::string> names;
    for (int i = 0; i < 20; ++i) {
        const RecontainerFile file(folder.Path().string());
        const std::string name = fs::path(file.Path()).filename().string();
        ASSERT_EQ(name.size(), 23U + 8U + 4U);
        EXPECT_EQ(name.substr(0, 23), "recontainer31132011991-");
        EXPECT_EQ(name.substr(23, 8).find_first_not_of("0123456789abcdef"), std::string::npos);
        EXPECT_EQ(name.substr(31), ".m4a");
        names.insert(name);
    }
    EXPECT_GT(names.size(), 15U);
}

TEST(RecontainerFile, LeavesTheOthersFilesAlone) {
    const TemporaryFolder folder;
    auto first = std::make_unique<RecontainerFile>(folder.Path().string());
    const RecontainerFile second(folder.Path().string());
    const RecontainerFile third(folder.Path().string());
    EXPECT_NE(first->Path(), second.Path());
    first.reset();
    EXPECT_TRUE(Exists(second.Path()));
    EXPECT_TRUE(Exists(third.Path()));
    EXPECT_EQ(EntriesIn(folder), 2U);
}

TEST(RecontainerFile, WhatAKilledRunHasLeftGoesWithTheNextOne) {
    const TemporaryFolder folder;
    const std::string before = folder.Write("recontainer31132011991-0badf00d.m4a", "left");
    {
        const RecontainerFile file(folder.Path().string());
        EXPECT_FALSE(Exists(before));
        folder.Write("recontainer31132011991-0badf00d.m4a", "left meanwhile");
    }
    EXPECT_EQ(EntriesIn(folder), 0U);
}

TEST(RecontainerFile, ANameIsFreeAgainBehindItsObject) {
    const TemporaryFolder folder;
    std::string path;
    {
        const RecontainerFile file(folder.Path().string());
        path = file.Path();
    }
    folder.Write(fs::path(path).filename().string(), "left by somebody else");
    { const RecontainerFile file(folder.Path().string()); }
    EXPECT_FALSE(Exists(path));
}

TEST(RecontainerFile, TheMarkCountsInTheMiddleOfANameToo) {
    const TemporaryFolder folder;
    const std::string marked = folder.Write("x-recontainer31132011991-y.bin", "");
    const std::string other = folder.Write("recontainer-31132011991.m4a", "");
    { const RecontainerFile file(folder.Path().string()); }
    EXPECT_FALSE(Exists(marked));
    EXPECT_TRUE(Exists(other));
}

TEST(RecontainerFile, WhatIsNoFileIsNotFollowed) {
    const TemporaryFolder folder;
    const std::string target = folder.Write("target", "kept");
    fs::create_symlink(target, folder / "recontainer31132011991-link");
    fs::create_directory(folder / "recontainer31132011991-empty");
    fs::create_directory(folder / "recontainer31132011991-full");
    folder.Write("recontainer31132011991-full/kept", "");
    { const RecontainerFile file(folder.Path().string()); }
    EXPECT_TRUE(Exists(target));
    EXPECT_FALSE(fs::is_symlink(folder / "recontainer31132011991-link"));
    EXPECT_FALSE(Exists(folder / "recontainer31132011991-empty"));
    EXPECT_TRUE(Exists(folder / "recontainer31132011991-full/kept"));
}

TEST(RecontainerFile, NoFolderIsNoFile) {
    const TemporaryFolder folder;
    const RecontainerFile file(folder / "none");
    EXPECT_EQ(file.Path(), "");
    const RecontainerFile nowhere("");
    EXPECT_EQ(nowhere.Path(), "");
}

// What another process does with a file of its own while this one sweeps.
class OtherProcess {
public:
    explicit OtherProcess(const std::string& folder) {
        int ready[2];
        if (pipe(ready) != 0) {
            return;
        }
        m_process = fork();
        if (m_process == 0) {
            const RecontainerFile file(folder);
            if (write(ready[1], "x", 1) == 1) {
                pause(); // until it is killed
            }
            _exit(1);
        }
        char letter = 0;
        m_isReady = read(ready[0], &letter, 1) == 1;
        close(ready[0]);
        close(ready[1]);
    }

    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    ~OtherProcess() { Kill(); }

    bool IsReady() const { return m_isReady; }

    void Kill() {
        if (m_process > 0) {
            kill(m_process, SIGKILL);
            waitpid(m_process, nullptr, 0);
            m_process = -1;
        }
    }

private:
    pid_t m_process = -1;
    bool m_isReady = false;
};

TEST(RecontainerFile, AnotherProcesssFileStaysUntilItIsKilled) {
    const TemporaryFolder folder;
    OtherProcess other(folder.Path().string());
    ASSERT_TRUE(other.IsReady());
    { const RecontainerFile file(folder.Path().string()); }
    EXPECT_EQ(EntriesIn(folder), 1U);
    other.Kill();
    EXPECT_EQ(EntriesIn(folder), 1U);
    const RecontainerFile file(folder.Path().string());
    EXPECT_EQ(EntriesIn(folder), 1U);
    EXPECT_TRUE(Exists(file.Path())); // its own, and the other one's is gone
}

} // namespace
} // namespace Zanthe
