#include "tools/zanthe/SampleSpool.h"

#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "tools/zanthe/CommandError.h"

using Program::SampleSpool;

namespace {

// $TMPDIR is another for as long as this lives.
class TemporaryFolderSetting {
public:
    explicit TemporaryFolderSetting(const std::string& value) {
        if (const char* before = std::getenv("TMPDIR"); before != nullptr) {
            m_before = before;
        }
        setenv("TMPDIR", value.c_str(), 1);
    }

    TemporaryFolderSetting(const TemporaryFolderSetting&) = delete;
    TemporaryFolderSetting& operator=(const TemporaryFolderSetting&) = delete;

    ~TemporaryFolderSetting() {
        if (m_before.empty()) {
            unsetenv("TMPDIR");
        } else {
            setenv("TMPDIR", m_before.c_str(), 1);
        }
    }

private:
    std::string m_before;
};

} // namespace

TEST(SampleSpool, GivesBackWhatWasAppended) {
    std::vector<float> left{1, 2, 3};
    std::vector<float> right{4, 5, 6};
    SampleSpool spool(2);
    spool.Append({left.data(), right.data()}, 3);
    spool.Append({left.data() + 1, right.data() + 1}, 2);
    ASSERT_EQ(spool.Frames(), 5);
    std::vector<float> samples(5);
    spool.Read(0, 0, 5, samples.data());
    EXPECT_EQ(samples, (std::vector<float>{1, 2, 3, 2, 3}));
    spool.Read(1, 0, 5, samples.data());
    EXPECT_EQ(samples, (std::vector<float>{4, 5, 6, 5, 6}));
    spool.Read(1, 2, 2, samples.data());
    EXPECT_EQ(samples, (std::vector<float>{6, 5, 6, 5, 6}));
}

TEST(SampleSpool, MayStayEmpty) {
    std::vector<float> plane{1};
    SampleSpool spool(2);
    spool.Append({plane.data(), plane.data()}, 0);
    EXPECT_EQ(spool.Frames(), 0);
    spool.Read(0, 0, 0, plane.data());
    EXPECT_EQ(plane[0], 1);
}

TEST(SampleSpool, LeavesNoNameInTheTemporaryFolder) {
    TemporaryFolder folder;
    TemporaryFolderSetting setting(folder.Path());
    std::vector<float> plane{1};
    SampleSpool spool(2);
    spool.Append({plane.data(), plane.data()}, 1);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(SampleSpool, SaysWhereItCannotBeKept) {
    TemporaryFolder folder;
    TemporaryFolderSetting setting(folder / "nowhere");
    try {
        SampleSpool spool(2);
        FAIL() << "kept in a folder that is not there";
    } catch (const Program::CommandError& error) {
        EXPECT_EQ(error.what(), (folder / "nowhere") + ": no temporary file for the sound: "
                                                       "No such file or directory");
    }
}
