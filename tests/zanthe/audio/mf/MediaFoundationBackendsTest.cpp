#include "zanthe/audio/mf/MediaFoundationBackends.h"

#include <filesystem>
#include <stdexcept>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/FixedVersion.h"
#include "tests/support/SilentReader.h"
#include "tests/support/TestMedia.h"
#include "tests/zanthe/audio/mf/MockBackends.h"
#include "zanthe/audio/mf/LegacyMFAudioReader.h"
#include "zanthe/audio/mf/MFAudioReader.h"
#include "zanthe/audio/mf/MFRecontaineringAudioReader.h"
#include "zanthe/core/TextException.h"

using testing::Return;
using testing::StrictMock;
using testing::Throw;

namespace Zanthe {
namespace {

class Backends : public testing::Test {
protected:
    boost::shared_ptr<IAudioReader> Create(const std::string& path, bool recontainer, bool newer) {
        return CreateMediaFoundationReader(path, recontainer, 48000, m_backends,
                                           FixedVersion(newer));
    }

    std::string FailureOf(const std::string& path, bool newer) {
        try {
            Create(path, false, newer);
        } catch (const TextException& error) {
            return error.what();
        }
        return "nothing thrown";
    }

    std::string m_aac = MadeMedia("audio-select/aac.mp4");
    std::string m_temporary = std::filesystem::temp_directory_path().string();
    boost::shared_ptr<IAudioReader> m_reader = boost::make_shared<SilentReader>();
    StrictMock<MockBackends> m_backends;
};

TEST_F(Backends, FromSixTwoOnTheRateIsTheCallers) {
    EXPECT_CALL(m_backends, CreateCurrent("\u00e9.wav", 48000)).WillOnce(Return(m_reader));
    EXPECT_EQ(Create("\u00e9.wav", false, true), m_reader);
}

TEST_F(Backends, BelowSixTwoTheLegacyReaderKnowsNoRate) {
    EXPECT_CALL(m_backends, CreateLegacy(std::wstring(L"\u00e9.wav"))).WillOnce(Return(m_reader));
    EXPECT_EQ(Create("\u00e9.wav", false, false), m_reader);
}

TEST_F(Backends, AacInMp4IsRecontaineredOnRequest) {
    EXPECT_CALL(m_backends, CreateRecontainering(m_aac, m_temporary, 48000))
        .Times(2)
        .WillRepeatedly(Return(m_reader));
    EXPECT_EQ(Create(m_aac, true, true), m_reader);
    EXPECT_EQ(Create(m_aac, true, false), m_reader);
}

TEST_F(Backends, AacInMp4IsReadAsItIsWithoutRequest) {
    EXPECT_CALL(m_backends, CreateCurrent(m_aac, 48000)).WillOnce(Return(m_reader));
    EXPECT_EQ(Create(m_aac, false, true), m_reader);
}

TEST_F(Backends, OtherFilesAreNeverRecontainered) {
    const std::string ac3 = MadeMedia("audio-select/ac3.mp4");
    EXPECT_CALL(m_backends, CreateCurrent(ac3, 48000)).WillOnce(Return(m_reader));
    EXPECT_EQ(Create(ac3, true, true), m_reader);
    EXPECT_CALL(m_backends, CreateLegacy(std::wstring(L"a.wav"))).WillOnce(Return(m_reader));
    EXPECT_EQ(Create("a.wav", true, false), m_reader);
}

TEST_F(Backends, NoReaderIsAFailure) {
    EXPECT_CALL(m_backends, CreateCurrent).WillOnce(Return(nullptr));
    EXPECT_EQ(FailureOf("a.wav", true), "Failed to create MediaFoundation resource");
    EXPECT_CALL(m_backends, CreateLegacy).WillOnce(Return(nullptr));
    EXPECT_EQ(FailureOf("a.wav", false), "Failed to create MediaFoundation resource");
}

TEST_F(Backends, AFailedRecontaineringIsNotMadeUpFor) {
    EXPECT_CALL(m_backends, CreateRecontainering)
        .WillOnce(Throw(std::runtime_error("Error re-containering audio!!")));
    EXPECT_THROW(Create(m_aac, true, true), std::runtime_error);
}

TEST_F(Backends, TheLibrarysOwnAreReadersOfTheirNames) {
    const MediaFoundationBackends backends;
    const std::wstring wide(m_aac.begin(), m_aac.end());
    const auto current = backends.CreateCurrent(m_aac, 44100);
    EXPECT_NE(dynamic_cast<MFAudioReader*>(current.get()), nullptr);
    const auto legacy = backends.CreateLegacy(wide);
    EXPECT_NE(dynamic_cast<LegacyMFAudioReader*>(legacy.get()), nullptr);
    const auto copied = backends.CreateRecontainering(m_aac, m_temporary, 44100);
    EXPECT_NE(dynamic_cast<MFRecontaineringAudioReader*>(copied.get()), nullptr);
}

TEST_F(Backends, TheLibrarysOwnAreEmptyWhereTheyCannotBeInitialised) {
    const MediaFoundationBackends backends;
    EXPECT_EQ(backends.CreateCurrent("none.wav", 44100), nullptr);
    EXPECT_EQ(backends.CreateCurrent(m_aac, 0), nullptr);
    EXPECT_EQ(backends.CreateLegacy(L"none.wav"), nullptr);
    EXPECT_THROW(backends.CreateRecontainering("none.mp4", m_temporary, 44100), std::runtime_error);
}

} // namespace
} // namespace Zanthe
