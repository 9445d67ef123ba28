#include "zanthe/core/VideoSampleReaderCache.h"

#include <atomic>
#include <stdexcept>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/zanthe/core/CountedReader.h"

using testing::ElementsAre;

namespace Zanthe {
namespace {

class CountingFactory : public DecoderFactory {
public:
    std::vector<std::tuple<std::string, int, bool>> calls;
    std::atomic<int> living = 0;
    bool fails = false;
    bool answersNull = false;

    // DecoderFactory
    VideoSampleReader* CreateVideoSampleReader(const std::string& path, int streamIndex,
                                               bool deferInitialization) override {
        calls.emplace_back(path, streamIndex, deferInitialization);
        if (fails) {
            throw std::runtime_error("cannot open");
        }
        return answersNull ? nullptr : new CountedReader(living);
    }
};

class Cache : public testing::Test {
protected:
    std::string ReleaseFailure(const std::string& path, int streamIndex) {
        try {
            m_cache->ReleaseDecoder(path, streamIndex);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "released";
    }

    CountingFactory m_factory;
    std::unique_ptr<VideoSampleReaderCache> m_cache =
        std::make_unique<VideoSampleReaderCache>(&m_factory);
};

TEST_F(Cache, TwoCallersShareOneReaderUntilTheSecondRelease) {
    auto first = m_cache->AcquireDecoder("/x/a.mp4", 0, false);
    auto second = m_cache->AcquireDecoder("/x/a.mp4", 0, false);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_EQ(m_factory.calls.size(), 1U);
    first.reset();
    second.reset();
    m_cache->ReleaseDecoder("/x/a.mp4", 0);
    EXPECT_EQ(m_factory.living, 1);
    m_cache->ReleaseDecoder("/x/a.mp4", 0);
    EXPECT_EQ(m_factory.living, 0);
}

TEST_F(Cache, OneReleaseTooManyThrows) {
    m_cache->AcquireDecoder("/x/a.mp4", 0, false);
    m_cache->AcquireDecoder("/x/a.mp4", 0, false);
    EXPECT_EQ(ReleaseFailure("/x/a.mp4", 0), "released");
    EXPECT_EQ(ReleaseFailure("/x/a.mp4", 0), "released");
    EXPECT_EQ(ReleaseFailure("/x/a.mp4", 0), "Can't release video sample reader for /x/a.mp4, ");
}

TEST_F(Cache, AFailedReleaseLeavesThePool) {
    m_cache->AcquireDecoder("a.mp4", 0, false);
    EXPECT_EQ(ReleaseFailure("a.mp4", 1), "Can't release video sample reader for a.mp4, ");
    EXPECT_EQ(ReleaseFailure("b.mp4", 0), "Can't release video sample reader for b.mp4, ");
    EXPECT_EQ(m_factory.living, 1);
    EXPECT_EQ(ReleaseFailure("a.mp4", 0), "released");
}

TEST_F(Cache, AReaderStaysOpenWhileSomebodyHoldsIt) {
    auto reader = m_cache->AcquireDecoder("a.mp4", 0, false);
    m_cache->ReleaseDecoder("a.mp4", 0);
    EXPECT_EQ(m_factory.living, 1);
    const auto anew = m_cache->AcquireDecoder("a.mp4", 0, false);
    EXPECT_NE(reader, anew);
    reader.reset();
    EXPECT_EQ(m_factory.living, 1);
}

TEST_F(Cache, AnotherStreamIsAnotherReader) {
    const auto first = m_cache->AcquireDecoder("a.mp4", 0, false);
    const auto second = m_cache->AcquireDecoder("a.mp4", 1, false);
    const auto negative = m_cache->AcquireDecoder("a.mp4", -1, false);
    EXPECT_NE(first, second);
    EXPECT_NE(first, negative);
    EXPECT_NE(second, negative);
    EXPECT_EQ(m_factory.living, 3);
}

TEST_F(Cache, PathsAreTakenAsTheyStand) {
    EXPECT_NE(m_cache->AcquireDecoder("/x/a.mp4", 0, false),
              m_cache->AcquireDecoder("/x/A.mp4", 0, false));
    EXPECT_EQ(m_factory.living, 2);
}

TEST_F(Cache, TheFlagGoesToTheFactoryAndIsNoPartOfTheKey) {
    const auto first = m_cache->AcquireDecoder("a.mp4", 2, true);
    EXPECT_EQ(m_cache->AcquireDecoder("a.mp4", 2, false), first);
    m_cache->AcquireDecoder("b.mp4", 3, false);
    EXPECT_THAT(m_factory.calls,
                ElementsAre(std::tuple("a.mp4", 2, true), std::tuple("b.mp4", 3, false)));
}

// Nothing stands between path and index in the key.
TEST_F(Cache, PathAndIndexCanFallTogether) {
    const auto first = m_cache->AcquireDecoder("a.mp4", 11, false);
    EXPECT_EQ(m_cache->AcquireDecoder("a.mp41", 1, false), first);
    EXPECT_EQ(ReleaseFailure("a.mp41", 1), "released");
    EXPECT_EQ(ReleaseFailure("a.mp4", 11), "released");
    EXPECT_NE(ReleaseFailure("a.mp4", 11), "released");
    // The sign of an index is part of it.
    const auto negative = m_cache->AcquireDecoder("a.mp4", -1, false);
    EXPECT_EQ(m_cache->AcquireDecoder("a.mp4-", 1, false), negative);
}

TEST_F(Cache, RecordingsAreNeverShared) {
    for (const std::string path : {"/x/a.brec", "/x/a.BREC"}) {
        EXPECT_EQ(ReleaseFailure(path, 0), "released");
        auto first = m_cache->AcquireDecoder(path, 0, true);
        const auto second = m_cache->AcquireDecoder(path, 0, false);
        EXPECT_NE(first, second);
        EXPECT_EQ(m_factory.calls.back(), std::tuple(path, 0, false));
        first.reset();
        EXPECT_EQ(m_factory.living, 1);
        EXPECT_EQ(ReleaseFailure(path, 0), "released");
        EXPECT_EQ(m_factory.living, 1);
    }
}

TEST_F(Cache, MembersOfRecordingsAreShared) {
    const auto first = m_cache->AcquireDecoder("a.brec!video0.mp4", 0, false);
    EXPECT_EQ(m_cache->AcquireDecoder("a.brec!video0.mp4", 0, false), first);
}

TEST_F(Cache, AFailureToOpenPoolsNothing) {
    m_factory.fails = true;
    EXPECT_THROW(m_cache->AcquireDecoder("a.mp4", 0, false), std::runtime_error);
    EXPECT_NE(ReleaseFailure("a.mp4", 0), "released");
    m_factory.fails = false;
    EXPECT_NE(m_cache->AcquireDecoder("a.mp4", 0, false), nullptr);
    EXPECT_EQ(m_factory.calls.size(), 2U);
}

TEST_F(Cache, ANullIsPooledAsWell) {
    m_factory.answersNull = true;
    EXPECT_EQ(m_cache->AcquireDecoder("a.mp4", 0, false), nullptr);
    m_factory.answersNull = false;
    EXPECT_EQ(m_cache->AcquireDecoder("a.mp4", 0, false), nullptr);
    EXPECT_EQ(m_factory.calls.size(), 1U);
    EXPECT_EQ(ReleaseFailure("a.mp4", 0), "released");
    EXPECT_EQ(ReleaseFailure("a.mp4", 0), "released");
    EXPECT_NE(m_cache->AcquireDecoder("a.mp4", 0, false), nullptr);
}

TEST_F(Cache, ItsEndDropsWhatNobodyHolds) {
    const auto held = m_cache->AcquireDecoder("a.mp4", 0, false);
    m_cache->AcquireDecoder("b.mp4", 0, false);
    m_cache->AcquireDecoder("b.mp4", 0, false);
    m_cache.reset();
    EXPECT_EQ(m_factory.living, 1);
    EXPECT_EQ(held->outputWidth(), 4);
}

} // namespace
} // namespace Zanthe
