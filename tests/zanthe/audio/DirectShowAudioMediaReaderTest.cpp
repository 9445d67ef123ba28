#include "zanthe/audio/DirectShowAudioMediaReader.h"

#include <limits>

#include <boost/make_shared.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "zanthe/core/TextException.h"
#include "zanthe/directshow/IDSChain.h"

namespace Zanthe {
namespace {

using testing::Return;
using testing::StrictMock;

class MockChain : public IDSChain {
public:
    MOCK_METHOD(bool, IsInitialized, (), (override));
    MOCK_METHOD(void, Uninitialize, (), (override));
    MOCK_METHOD(void, Initialize, (), (override));
    MOCK_METHOD(void, InitializeAsync, (std::int64_t), (override));
    MOCK_METHOD(FindSampleResult, FindSample, (std::int64_t, IMediaSample**, double), (override));
    MOCK_METHOD(unsigned int, ReadAudioFloat,
                (std::int64_t, std::int64_t, unsigned int, std::vector<float*>, FindSampleResult&),
                (override));
    MOCK_METHOD(int, GetWidth, (), (override));
    MOCK_METHOD(int, GetHeight, (), (override));
    MOCK_METHOD(void, SetMaxSteps, (int), (override));
};

class ChainReads : public testing::Test {
protected:
    unsigned int Read(std::int64_t startFrame, unsigned int frameCount) {
        return m_reader.FillAudioBuffer(startFrame, frameCount, m_channels);
    }

    boost::shared_ptr<StrictMock<MockChain>> m_chain = boost::make_shared<StrictMock<MockChain>>();
    DirectShowAudioMediaReader m_reader{"a.avi", m_chain};
    float m_left = 0;
    float m_right = 0;
    std::vector<float*> m_channels{&m_left, &m_right};
};

TEST_F(ChainReads, TimesAreTruncatedUnitsAt44100Hz) {
    EXPECT_CALL(*m_chain, ReadAudioFloat(0, 0, 1, m_channels, testing::_)).WillOnce(Return(1));
    EXPECT_CALL(*m_chain, ReadAudioFloat(226, 0, 2, m_channels, testing::_)).WillOnce(Return(2));
    EXPECT_CALL(*m_chain, ReadAudioFloat(680, 0, 3, m_channels, testing::_)).WillOnce(Return(3));
    EXPECT_CALL(*m_chain, ReadAudioFloat(10'000'000, 0, 4, m_channels, testing::_))
        .WillOnce(Return(4));
    EXPECT_CALL(*m_chain, ReadAudioFloat(-226, 0, 5, m_channels, testing::_)).WillOnce(Return(5));
    EXPECT_EQ(Read(0, 1), 1U);
    EXPECT_EQ(Read(1, 2), 2U); // 226.757
    EXPECT_EQ(Read(3, 3), 3U); // 680.272
    EXPECT_EQ(Read(44100, 4), 4U);
    EXPECT_EQ(Read(-1, 5), 5U);
}

TEST_F(ChainReads, TheChainCopesWithAnyNumberOfPlanes) {
    m_channels.pop_back();
    EXPECT_CALL(*m_chain, ReadAudioFloat(0, 0, 1, m_channels, testing::_)).WillOnce(Return(0));
    EXPECT_EQ(Read(0, 1), 0U);
}

TEST_F(ChainReads, TheCallersPlanesStayAsTheyAre) {
    const std::vector<float*> before = m_channels;
    EXPECT_CALL(*m_chain, ReadAudioFloat)
        .WillOnce([](std::int64_t, std::int64_t, unsigned int, std::vector<float*> channels,
                     FindSampleResult& status) {
            *channels[0] = 0.5F;
            channels.clear();
            status = FindSampleResult::Failed;
            return 1U;
        });
    EXPECT_EQ(Read(0, 1), 1U);
    EXPECT_EQ(m_channels, before);
    EXPECT_EQ(m_left, 0.5F);
}

// The product with ten million must fit.
TEST_F(ChainReads, AFrameWithoutATimeGivesNothing) {
    constexpr std::int64_t last = std::numeric_limits<std::int64_t>::max() / 10'000'000;
    EXPECT_CALL(*m_chain, ReadAudioFloat(last * 10'000'000 / 44100, 0, 1, m_channels, testing::_))
        .WillOnce(Return(0));
    EXPECT_EQ(Read(last, 1), 0U);
    EXPECT_EQ(Read(last + 1, 1), 0U);
    EXPECT_EQ(Read(std::numeric_limits<std::int64_t>::max(), 1), 0U);
    EXPECT_EQ(Read(std::numeric_limits<std::int64_t>::min(), 1), 0U);
}

TEST(DirectShowAudioMediaReader, AChainKeepsNoSamplesAndTakesTenSteps) {
    const boost::shared_ptr<IDSChain> chain = boost::make_shared<StrictMock<MockChain>>();
    testing::MockFunction<boost::shared_ptr<IDSChain>(const std::wstring&, int, int)> maker;
    EXPECT_CALL(maker, Call(std::wstring(L"\u00e9.avi"), 0, 10)).WillOnce(Return(chain));
    EXPECT_EQ(DirectShowAudioMediaReader::MakeChain("\u00e9.avi", maker.AsStdFunction()), chain);
}

TEST(DirectShowAudioMediaReader, WithoutAChainItThrowsAPlainException) {
    try {
        DirectShowAudioMediaReader reader("a.avi", nullptr);
        FAIL();
    } catch (const TextException& error) {
        EXPECT_STREQ(error.what(), "Failed to create DSAudioChain");
    }
    EXPECT_THROW(DirectShowAudioMediaReader("none.avi"), TextException);
}

} // namespace
} // namespace Zanthe
