#include "zanthe/audio/mf/MFRecontaineringAudioReader.h"

#include <filesystem>
#include <stdexcept>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/mp4v2/Mp4v2.h"
#include "tests/support/FixedVersion.h"
#include "tests/support/StereoSound.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/audio/mf/MockBackends.h"

using testing::Return;

namespace Zanthe {
namespace {

namespace fs = std::filesystem;

class MockReader : public IAudioReader {
public:
    MOCK_METHOD(unsigned int, FillAudioBuffer, (std::int64_t, unsigned int, std::vector<float*>&),
                (override));
};

class Recontainering : public testing::Test {
protected:
    using ReaderPtr = std::unique_ptr<MFRecontaineringAudioReader>;

    ReaderPtr Make(const std::string& path, bool newer = true) {
        return std::make_unique<MFRecontaineringAudioReader>(path, m_folder.Path().string(), 48000,
                                                             m_backends, FixedVersion(newer));
    }

    std::string FailureOf(const std::string& path) {
        try {
            Make(path);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "nothing thrown";
    }

    std::vector<fs::path> Files() const {
        return {fs::directory_iterator(m_folder.Path()), fs::directory_iterator()};
    }

    std::string m_aac = MadeMedia("audio-select/aac.mp4");
    TemporaryFolder m_folder;
    boost::shared_ptr<MockReader> m_inner = boost::make_shared<MockReader>();
    testing::NiceMock<MockBackends> m_backends;
};

TEST_F(Recontainering, ReadsACopyOfTheSoundTrackAlone) {
    std::string copy;
    EXPECT_CALL(m_backends, CreateCurrent(testing::_, 48000))
        .WillOnce([&](const std::string& path, int) {
            copy = path;
            return m_inner;
        });
    const ReaderPtr reader = Make(m_aac);
    ASSERT_EQ(Files().size(), 1U);
    EXPECT_EQ(Files()[0].string(), copy);
    MP4FileHandle file = MP4Read(copy.c_str());
    ASSERT_NE(file, MP4_INVALID_FILE_HANDLE);
    EXPECT_NE(MP4FindTrackId(file, 0, MP4_AUDIO_TRACK_TYPE, 0), MP4_INVALID_TRACK_ID);
    EXPECT_EQ(MP4FindTrackId(file, 1, nullptr, 0), MP4_INVALID_TRACK_ID);
    MP4Close(file, 0);
}

TEST_F(Recontainering, TheCopyCountsTimeAsTheFileDoes) {
    std::string bytes = ReadWholeFile(m_aac);
    bytes.replace(bytes.find("mvhd") + 16, 4, std::string("\x00\x00\x02\x58", 4)); // 600
    const TemporaryFolder other;
    std::uint32_t scale = 0;
    EXPECT_CALL(m_backends, CreateCurrent).WillOnce([&](const std::string& path, int) {
        MP4FileHandle file = MP4Read(path.c_str());
        scale = MP4GetTimeScale(file);
        MP4Close(file, 0);
        return m_inner;
    });
    Make(other.Write("a.mp4", bytes));
    EXPECT_EQ(scale, 600U);
}

TEST_F(Recontainering, BelowSixTwoTheLegacyReaderReadsTheCopy) {
    EXPECT_CALL(m_backends, CreateLegacy(testing::_)).WillOnce(Return(m_inner));
    EXPECT_NE(Make(m_aac, false), nullptr);
}

TEST_F(Recontainering, ForwardsUnchanged) {
    EXPECT_CALL(m_backends, CreateCurrent).WillOnce(Return(m_inner));
    const ReaderPtr reader = Make(m_aac);
    std::vector<float*> channels(3, nullptr);
    EXPECT_CALL(*m_inner, FillAudioBuffer(-7, 4000000000U, testing::Ref(channels)))
        .WillOnce(Return(9));
    EXPECT_EQ(reader->FillAudioBuffer(-7, 4000000000U, channels), 9U);
}

TEST_F(Recontainering, WithoutASoundTrackItThrowsAndLeavesNothing) {
    for (const char* name : {"audio-select/no-sound.mp4", "pictures-only.mp4"}) {
        EXPECT_EQ(FailureOf(MadeMedia(name)), "Error re-containering audio!!") << name;
    }
    EXPECT_EQ(FailureOf(m_folder / "none.mp4"), "Error re-containering audio!!");
    EXPECT_EQ(FailureOf(MadeMedia("tone-8000-mono-cbr.mp3")), "Error re-containering audio!!");
    EXPECT_TRUE(Files().empty());
}

TEST_F(Recontainering, WithoutATemporaryFolderItThrows) {
    EXPECT_THROW(MFRecontaineringAudioReader(m_aac, m_folder / "none", 48000), std::runtime_error);
}

TEST_F(Recontainering, WithoutAReaderItThrowsAndLeavesNothing) {
    EXPECT_CALL(m_backends, CreateCurrent).WillOnce(Return(nullptr));
    EXPECT_EQ(FailureOf(m_aac), "Error creating reader for re-containered audio!!");
    EXPECT_TRUE(Files().empty());
}

TEST_F(Recontainering, AReaderThatThrowsLeavesNothing) {
    EXPECT_CALL(m_backends, CreateCurrent).WillOnce(testing::Throw(std::bad_alloc()));
    EXPECT_THROW(Make(m_aac), std::bad_alloc);
    EXPECT_TRUE(Files().empty());
}

TEST_F(Recontainering, TwoReadersOfOneFileHaveACopyEach) {
    EXPECT_CALL(m_backends, CreateCurrent).Times(2).WillRepeatedly(Return(m_inner));
    ReaderPtr first = Make(m_aac);
    const ReaderPtr second = Make(m_aac);
    EXPECT_EQ(Files().size(), 2U);
    first.reset();
    EXPECT_EQ(Files().size(), 1U);
}

TEST_F(Recontainering, TheReaderEndsBeforeItsFile) {
    struct Watcher : MockReader {
        explicit Watcher(const TemporaryFolder& watched)
            : folder(watched) {}

        ~Watcher() override { EXPECT_FALSE(fs::is_empty(folder.Path())); }

        const TemporaryFolder& folder;
    };

    EXPECT_CALL(m_backends, CreateCurrent).WillOnce(Return(boost::make_shared<Watcher>(m_folder)));
    Make(m_aac);
    testing::Mock::VerifyAndClearExpectations(&m_backends);
    EXPECT_TRUE(Files().empty());
}

} // namespace
} // namespace Zanthe
